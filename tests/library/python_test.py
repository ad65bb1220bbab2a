#!/usr/bin/env python3
"""The package for Python: that it publishes, and what becomes of what goes wrong."""

import copy
import os
import pickle
import resource
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest
from pathlib import Path

import marrowpress
from marrowpress import Options

TOPIC = '<topic class="- topic/topic " id="t"><title class="- topic/title ">T</title></topic>'
MAP = """<map class="- map/map ">
<keydef class="+ map/topicref mapgroup-d/keydef " keys="k" href="t.dita"/>
<topicref class="- map/topicref " href="t.dita"/>
<topicref class="- map/topicref " href="none.dita"/>
</map>"""
ENGLISH = Options(language="en")


def child_of(thread):
    """The one child process of a thread."""
    for _ in range(1000):
        found = Path(f"/proc/self/task/{thread}/children").read_text(encoding="ascii").split()
        if found:
            return int(found[0])
        time.sleep(0.01)
    raise AssertionError("there is no child")


class PackageTest(unittest.TestCase):
    def setUp(self):
        # pylint: disable-next=consider-using-with
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)
        self.folder = Path(self.temporary.name)
        (self.folder / "t.dita").write_text(TOPIC, encoding="utf-8")
        self.map = self.folder / "m.ditamap"
        self.map.write_text(MAP, encoding="utf-8")
        self.output = self.folder / "out.dita"

    def publish(self, **settings):
        return marrowpress.publish(self.map, self.output, **{"options": ENGLISH, **settings})

    def test_publish_gives_outputs_and_findings(self):
        for child in (False, True):
            result = self.publish(options=Options(language="en", child=child))
            self.assertTrue(result.is_published)
            self.assertEqual(result.outputs, (str(self.output),))
            finding = result.findings[1]
            self.assertEqual((finding.id, finding.severity, finding.line), ("MP111", "error", 4))
            self.assertIn("none.dita", finding.text)
            self.assertEqual(finding.file, str(self.map))
            self.assertEqual(result.values, (0, (), (), ()))

    def test_flat_books_have_a_folder(self):
        result = marrowpress.publish(self.map, self.folder, format="flatbook")
        self.assertEqual(result.outputs, (str(self.folder / "t.qs"),))
        with self.assertRaises(marrowpress.Invalid):
            self.publish(format="pdf")

    def test_a_filter_is_taken(self):
        profile = self.folder / "p.ditaval"
        profile.write_text('<val><prop att="audience" val="x" action="exclude"/></val>',
                           encoding="utf-8")
        result = self.publish(filter=profile)
        self.assertIn(str(profile), [finding.file for finding in result.findings])

    def test_trials_leave_nothing(self):
        before = sorted(self.folder.iterdir())
        self.assertEqual(len(marrowpress.check(self.map).findings), 3)
        self.assertEqual([key["key"] for key in marrowpress.keys(self.map)], ["k"])
        files = {dependency.file: dependency for dependency in marrowpress.deps(self.map)}
        self.assertEqual(files[str(self.folder / "none.dita")].state, "absent")
        self.assertEqual(files[str(self.folder / "t.dita")].origin.line, 2)
        self.assertEqual(sorted(self.folder.iterdir()), before)

    def test_a_run_that_fails_is_an_exception_with_its_result(self):
        self.map.unlink()
        with self.assertRaises(marrowpress.PublishError) as raised:
            self.publish()
        self.assertEqual(raised.exception.result.status, -42)
        self.assertEqual(str(raised.exception), raised.exception.result.error)
        self.assertTrue(raised.exception.result.findings)
        self.assertFalse(marrowpress.check(self.map).is_published)

    def test_callbacks_are_called_and_what_they_raise_comes_out(self):
        lines, findings = [], []
        self.publish(options=Options(on_progress=lines.append, on_finding=findings.append))
        self.assertTrue(lines)
        self.assertEqual(len(findings), 3)
        self.output.unlink()

        def refuse(line):
            raise KeyError(line)

        for child in (False, True):
            with self.assertRaises(KeyError):
                self.publish(options=Options(on_progress=refuse, child=child))
        self.assertFalse(self.output.exists())

    def test_entities_and_open_documents_are_asked_for(self):
        self.map.write_text('<!DOCTYPE map PUBLIC "own" "none.dtd">' + MAP, encoding="utf-8")
        asked = []
        document = marrowpress.OpenDocument(7, str(self.folder / "t.dita"), 1)
        result = self.publish(options=Options(resolve_entity=asked.append,
                                              open_documents=[document]))
        self.assertIn("own", asked)
        self.assertEqual(result.values[1:3], ((document.path,), (7,)))

    def test_a_call_from_a_callback_is_busy_and_a_child_is_not(self):
        seen = []

        def call(_line):
            if not seen:
                with self.assertRaises(marrowpress.Busy):
                    marrowpress.check(self.map)
                seen.append(marrowpress.check(self.map, options=Options(child=True)).status)

        self.publish(options=Options(on_progress=call))
        self.assertEqual(seen, [0])

    def test_what_a_signal_handler_raises_ends_the_run_and_comes_out(self):
        topics = "".join(f'<topicref class="- map/topicref " href="t{number}.dita"/>'
                         for number in range(500))
        self.map.write_text('<map class="- map/map ">' + topics + "</map>", encoding="utf-8")
        for number in range(500):
            (self.folder / f"t{number}.dita").write_text(TOPIC, encoding="utf-8")

        for child in (False, True):
            lines = []
            has_begun = threading.Event()

            def interrupt():
                has_begun.wait(30)
                time.sleep(0.005)
                os.kill(os.getpid(), signal.SIGINT)

            def note(line):
                lines.append(line)
                has_begun.set()

            sender = threading.Thread(target=interrupt)
            sender.start()
            handler, hook = signal.getsignal(signal.SIGINT), sys.unraisablehook
            with self.subTest(child=child), self.assertRaises(KeyboardInterrupt):
                self.publish(options=Options(on_progress=note, child=child))
            sender.join()
            self.assertEqual((signal.getsignal(signal.SIGINT), sys.unraisablehook), (handler, hook))
            self.assertLess(len(lines), 500)

    def test_what_others_lose_meanwhile_is_theirs(self):
        class Careless:
            def __del__(self):
                raise ValueError("careless")

        lost = []
        hook = sys.unraisablehook
        sys.unraisablehook = lambda unraisable: lost.append(str(unraisable.exc_value))
        try:
            self.publish(options=Options(on_progress=lambda _: Careless() and None))
        finally:
            sys.unraisablehook = hook
        self.assertEqual(set(lost), {"careless"})

    def test_other_threads_run_meanwhile_and_wait_for_their_turn(self):
        counted = []
        is_over = threading.Event()

        def count():
            while not is_over.is_set():
                counted.append(1)
                time.sleep(0.0001)

        threads = [threading.Thread(target=self.publish) for _ in range(3)]
        counter = threading.Thread(target=count)
        for thread in (counter, *threads):
            thread.start()
        for thread in threads:
            thread.join()
        is_over.set()
        counter.join()
        self.assertGreater(len(counted), 10)

    def test_what_a_callback_raises_ends_its_own_call_alone(self):
        flag = marrowpress.CancelFlag()
        raising = Options(language="en", cancel=flag, on_progress=lambda _line: 1 // 0)
        with self.assertRaises(ZeroDivisionError):
            self.publish(options=raising)
        self.assertFalse(flag.is_set)
        self.assertTrue(self.publish(options=Options(cancel=flag)).is_published)
        lines = []

        def raise_once(_line):
            lines.append(_line)
            if len(lines) == 1:
                raise ValueError("once")
        with marrowpress.Pool(1, Options(on_progress=raise_once)) as pool:
            first, second = (pool.publish(self.map, self.output) for _ in range(2))
        self.assertIsInstance(first.exception(), ValueError)
        self.assertTrue(second.result().is_published)

    def test_errors_go_from_one_process_to_another(self):
        with self.assertRaises(marrowpress.PublishError) as raised:
            marrowpress.publish(self.folder / "none.ditamap", self.output, options=ENGLISH)
        for error in (pickle.loads(pickle.dumps(raised.exception)), copy.copy(raised.exception)):
            self.assertEqual(str(error), str(raised.exception))
            self.assertEqual(error.result, raised.exception.result)
        crashed = pickle.loads(pickle.dumps(marrowpress.Crashed("it crashed", 11)))
        self.assertEqual((str(crashed), crashed.signal), ("it crashed", 11))

    def test_what_no_option_can_be_is_invalid(self):
        for wrong in ({"language": "fr"}, {"catalogs": "/c.xml"}, {"catalogs": ["/c\0.xml"]},
                      {"catalogs": ["/\udcff.xml"]}, {"catalogs": [b"/c.xml"]}, {"memory_limit": -1},
                      {"time_limit": -1}, {"time_limit": float("inf")}, {"time_limit": float("nan")},
                      {"open_documents": [marrowpress.OpenDocument("a", "x")]}):
            with self.subTest(wrong=wrong), self.assertRaises(marrowpress.Invalid):
                self.publish(options=Options(**wrong))
        for request in ("{}\0{", "\udcff"):
            with self.subTest(request=request), self.assertRaises(marrowpress.Invalid):
                marrowpress.run(request)
        with self.assertRaises(marrowpress.Invalid):
            marrowpress.publish(str(self.map).encode(), self.output)

    def test_a_limit_of_time_may_be_as_long_or_as_short_as_one_likes(self):
        self.assertTrue(self.publish(options=Options(child=True, time_limit=1e300)).is_published)
        with self.assertRaises(marrowpress.TimedOut):
            self.publish(options=Options(child=True, time_limit=1e-9))

    def test_a_flag_cancels(self):
        flag = marrowpress.CancelFlag()
        with self.assertRaises(marrowpress.Cancelled):
            self.publish(options=Options(cancel=flag, on_progress=lambda _line: flag.set()))

    def test_a_forked_process_takes_a_child(self):
        self.publish()
        child = os.fork()
        if child == 0:
            code = 1
            try:
                marrowpress.check(self.map)
            except marrowpress.Forked:
                code = 0 if marrowpress.check(self.map, options=Options(child=True)) else 2
            os._exit(code)
        self.assertEqual(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]), 0)

    def test_a_crash_and_a_limit_cost_one_request(self):
        def crash(_id):
            os.kill(child_of(threading.get_native_id()), signal.SIGSEGV)

        self.map.write_text('<!DOCTYPE map PUBLIC "own" "none.dtd">' + MAP, encoding="utf-8")
        with self.assertRaises(marrowpress.Crashed) as raised:
            self.publish(options=Options(child=True, resolve_entity=crash))
        self.assertEqual(raised.exception.signal, signal.SIGSEGV)
        with self.assertRaises(marrowpress.TimedOut):
            self.publish(options=Options(child=True, time_limit=0.05,
                                         resolve_entity=lambda _id: time.sleep(0.2)))
        self.assertTrue(self.publish().is_published)

    def test_a_pool_serves_several(self):
        with marrowpress.Pool(2) as pool:
            futures = []
            for number in range(4):
                (self.folder / str(number)).mkdir()
                futures.append(pool.publish(self.map, self.folder / str(number) / "out.dita"))
            missing = pool.publish(self.folder / "none.ditamap", self.output)
            self.assertEqual([future.result().outputs for future in futures],
                             [(str(self.folder / str(number) / "out.dita"),) for number in range(4)])
            with self.assertRaises(marrowpress.PublishError):
                missing.result()
            self.assertTrue(pool.check(self.map).result().is_published)

    def test_arguments_that_are_wrong_are_exceptions(self):
        with self.assertRaises(marrowpress.Invalid):
            marrowpress.run("{}", flags=1 << 31)
        self.assertEqual(marrowpress.run("no JSON").status, -43)
        self.assertEqual(marrowpress.run({}).status, -43)

    def test_the_import_is_short(self):
        least = min(self.seconds("import marrowpress") for _ in range(10))
        nothing = min(self.seconds("pass") for _ in range(10))
        # 50 ms where Python itself takes 10: both take longer on a machine that is busy.
        self.assertLess(least - nothing, 5 * nothing)

    def seconds(self, code):
        """CPU time of a Python that does this, and has done so before: it has the bytecode."""
        environment = {**os.environ, "PYTHONPYCACHEPREFIX": str(self.folder / "bytecode")}
        environment.pop("PYTHONDONTWRITEBYTECODE", None)
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        subprocess.run([sys.executable, "-c", code], check=True, env=environment)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


if __name__ == "__main__":
    unittest.main()
