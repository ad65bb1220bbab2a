#!/usr/bin/env python3
"""Tests what the benchmark stands on: bench_test.py COMMAND FLOOR

The generator gives the same bytes for the same seed; each of its publications comes to its end, and
without a report line unless it is about one; the floor does what a trace says, no more and no less;
figures are what they are called.
"""

import json
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from batches import JOBS, SMALL_DTDS, example_jobs, measure_own, small_jobs
from cases import (CASES, COMPOSITE, Costs, compared, each_further, growth, linear,
                   over_floor, whole)
from corpus import write_corpus
from growing import GENERATORS
from measuring import Failure, Publication, environment, measure, run

BENCH = Path(__file__).resolve().parent
SMALL = 12
SEED = 7
# The corpora have tests of their own, and the last is another, beside keys that take their time.
NOT_TRIED = ("corpus", "corpus-with-invalid", "conrefs-20000-keys")
COMMAND, FLOOR = None, None


def tree(folder):
    return {path.relative_to(folder).as_posix(): path.read_bytes()
            for path in folder.rglob("*") if path.is_file()}


class WithFolder(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="marrowpress-")
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name).resolve()

    def publication(self, output=COMPOSITE):
        opened = self.folder / "input/open.json"
        return Publication(self.folder / "work", self.folder / "input/root.ditamap", output,
                           open_documents=opened if opened.is_file() else None)


class TheGenerator(WithFolder):
    def generate(self, name, *options):
        subprocess.run([BENCH / "generate", *options, "corpus", str(SMALL), self.folder / name],
                       check=True)
        return tree(self.folder / name)

    def test_gives_the_same_bytes_for_the_same_seed(self):
        first = self.generate("first", "--seed", str(SEED))
        self.assertGreater(len(first), SMALL)
        self.assertEqual(first, self.generate("second", "--seed", str(SEED)))

    def test_gives_other_bytes_for_another_seed(self):
        self.assertNotEqual(self.generate("first", "--seed", str(SEED)),
                            self.generate("second", "--seed", str(SEED + 1)))

    def test_makes_topics_of_about_3_kb(self):
        write_corpus(self.folder / "input", 200, SEED)
        sizes = [path.stat().st_size for path in (self.folder / "input/topics").rglob("*.dita")]
        self.assertEqual(len(sizes), 200)
        self.assertAlmostEqual(sum(sizes) / len(sizes), 3000, delta=300)

    def test_makes_publications_that_come_to_their_end(self):
        tried = {(point.generator, point.output) for case in CASES for point in case.points}
        for name, output in sorted(tried):
            if name in NOT_TRIED:
                continue
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                self.folder = Path(folder).resolve()
                GENERATORS[name](self.folder / "input", SMALL if name != "megabytes" else 1)
                lines = run(self.publication(output).command(COMMAND), self.folder)
                self.assertEqual(len(lines), SMALL if name == "ill-formed-conrefs" else 0, lines)

    def test_names_all_that_the_cases_need(self):
        known = {*GENERATORS, "corpus", "corpus-with-invalid"}
        for case in CASES:
            for point in case.points:
                self.assertIn(point.generator, known, case.name)


class ThePublication(WithFolder):
    def setUp(self):
        super().setUp()
        write_corpus(self.folder / "input", 10, SEED)

    def test_ends_with_0_and_no_report_line(self):
        self.assertEqual(run(self.publication().command(COMMAND), self.folder), [])

    def test_has_all_invalid_topics_read_without_their_dtd(self):
        write_corpus(self.folder / "invalid", 10, SEED, has_invalid=True)
        valid, invalid = tree(self.folder / "input"), tree(self.folder / "invalid")
        changed = {name for name in valid if valid[name] != invalid[name]}
        self.assertEqual(changed, {f"topics/000/t{number:06}.dita" for number in (0, 5)})

    def test_gives_a_list_of_its_sources_and_topics(self):
        publication = self.publication()
        self.assertEqual(publication.write_list(COMMAND), [])
        lines = [line.split("\t") for line in publication.list.read_text().splitlines()]
        topics = {Path(fields[1]).name for fields in lines if fields[0] == "topic"}
        documents = [Path(fields[1]).name for fields in lines if fields[0] == "document"]
        self.assertEqual(topics, {f"t{number:06}.dita" for number in range(10)})
        self.assertEqual(documents, ["shell.dita", "root.ditamap", "library0.dita"])
        self.assertEqual(sum(fields[0] == "public" for fields in lines), 6)

    def test_takes_a_topic_once_that_is_referred_to_again(self):
        GENERATORS["references-to-one-topic"](self.folder / "other", SMALL)
        publication = Publication(self.folder / "work", self.folder / "other/root.ditamap", COMPOSITE)
        publication.write_list(COMMAND)
        lines = publication.list.read_text().splitlines()
        self.assertEqual(sum(line.startswith("topic\t") for line in lines), 1)


class TheFloor(WithFolder):
    def counts_of(self, publication):
        done = subprocess.run(publication.floor_command(FLOOR), stdout=subprocess.PIPE,
                              env=environment(), check=True)
        return json.loads(done.stdout)

    def test_parses_each_document_and_takes_in_each_topic(self):
        write_corpus(self.folder / "input", 10, SEED)
        publication = self.publication()
        publication.write_list(COMMAND)
        self.assertEqual(self.counts_of(publication), {"documents": 13, "topics": 10, "unread": 0})
        written = ElementTree.parse(self.folder / "work/floor.dita").getroot()
        self.assertEqual([topic.get("id") for topic in written],
                         [f"t{number:06}" for number in range(10)])

    def test_parses_invalid_topics_to_their_end(self):
        write_corpus(self.folder / "input", 10, SEED, has_invalid=True)
        publication = self.publication()
        publication.write_list(COMMAND)
        self.assertEqual(self.counts_of(publication), {"documents": 13, "topics": 10, "unread": 0})

    def test_tells_what_it_cannot_parse(self):
        GENERATORS["ill-formed-conrefs"](self.folder / "input", SMALL)
        publication = self.publication()
        publication.write_list(COMMAND)
        self.assertEqual(self.counts_of(publication), {"documents": 3, "topics": 1, "unread": 1})

    def test_refuses_a_line_that_it_does_not_know(self):
        wrong = self.folder / "list"
        for line in ("", "map\tx", "document", "topic\tx\ty", "public\tx"):
            wrong.write_text(line + "\n", encoding="utf-8")
            done = subprocess.run([FLOOR, wrong, self.folder / "out.dita"], check=False,
                                  stderr=subprocess.PIPE, stdout=subprocess.DEVNULL)
            self.assertEqual(done.returncode, 1, line)
            self.assertIn(b"no line of a list", done.stderr)


class AMeasurement(WithFolder):
    def test_has_a_number_for_each_round(self):
        write_corpus(self.folder / "input", 1, SEED)
        publication = self.publication()
        publication.write_list(COMMAND)
        costs, other = measure(publication, [COMMAND, COMMAND], FLOOR, 2, False)
        for values in (costs.cpu, costs.floor_cpu, costs.memory, costs.floor_memory, other.cpu):
            self.assertEqual(len(values), 2)
            self.assertGreater(min(values), 0)
        self.assertGreater(costs.source_bytes, 3000)

    def test_fails_with_a_command_that_fails(self):
        write_corpus(self.folder / "input", 1, SEED)
        publication = self.publication()
        with self.assertRaises(Failure):
            measure(publication, [Path("/bin/false")], None, 1, False)


class ABatch(WithFolder):
    def costs_of(self, *options):
        return measure_own([COMMAND, "batch", JOBS, "--results", "results", *options], self.folder)

    def results(self):
        return [json.loads(path.read_text()) for path in (self.folder / "results").iterdir()]

    def test_of_small_jobs_has_a_map_and_an_output_for_each(self):
        small_jobs(self.folder, 3)
        self.costs_of("--catalog", str(SMALL_DTDS / "catalog.xml"))
        self.assertEqual([result["state"] for result in self.results()], ["clean"] * 3)
        outputs = {result["outputs"][0]["path"] for result in self.results()}
        self.assertEqual(outputs, {str(self.folder / f"out/job{number}.dita") for number in range(3)})
        self.assertEqual({result["topics"] for result in self.results()}, {2})

    def test_of_the_example_costs_what_its_jobs_do_and_little_itself(self):
        example_jobs(self.folder, 2)
        costs = self.costs_of("-j", "1")
        self.assertGreater(costs.cpu_of_jobs, costs.cpu)
        self.assertGreater(costs.memory, 10**6)
        self.assertEqual(self.costs_of("--resume").cpu_of_jobs, 0)

    def test_that_fails_is_no_measurement(self):
        example_jobs(self.folder, 1)
        with self.assertRaises(Failure):
            self.costs_of("--catalog", "nowhere.xml")


class AFigure(unittest.TestCase):
    @staticmethod
    def costs(*numbers):
        return [Costs(instructions=[number]) for number in numbers]

    @staticmethod
    def points(*sizes):
        return [type("Sized", (), {"size": size}) for size in sizes]

    def test_over_the_floor_is_the_median_of_each_rounds_ratio(self):
        cost = Costs(cpu=[2.0, 9.0, 4.0], floor_cpu=[1.0, 3.0, 1.0], memory=[4e6], source_bytes=10**6,
                     floor_memory=[2e6], instructions=[3_000_000], floor_instructions=[2_000_000])
        self.assertEqual(over_floor([cost]), ["Ir 3 / 2 M = 1.50", "CPU 3.00 (4.00 s)",
                                              "memory 2.00 (4 MB, 2.0 B a source byte more)"])

    def test_of_one_further_thing_leaves_out_what_all_sizes_cost(self):
        figure = each_further(self.points(10, 30))
        self.assertEqual(figure(self.costs(7_000_000, 9_000_000)), ["Ir 0.100 M"])

    def test_compares_the_cost_of_one_further_thing(self):
        figure = compared(self.points(10, 30, 10, 30))
        self.assertEqual(figure(self.costs(1_000_000, 3_000_000, 4_000_000, 12_000_000)),
                         ["Ir 0.100 M and 0.400 M, 4.00 times"])

    def test_of_wholes_ends_with_their_ratio(self):
        self.assertEqual(whole(self.costs(2_000_000, 3_000_000)),
                         ["Ir 2.000 M and 3.000 M, 1.50 times"])

    def test_of_growth_is_1_when_ten_times_as_much_costs_ten_times_as_much(self):
        # In excess of what the smallest size costs.
        self.assertEqual(growth(self.costs(5_000, 6_000, 15_000)), ["Ir 1.000"])

    def test_of_linear_cost_has_exponent_1_and_of_quadratic_2(self):
        figure = linear(self.points(100, 200, 400))
        self.assertEqual(figure(self.costs(1_100_000, 1_200_000, 1_400_000)),
                         ["Ir 0.001 M each, exponent 1.00"])
        self.assertEqual(figure(self.costs(1_000_000, 4_000_000, 16_000_000)),
                         ["Ir 0.050 M each, exponent 2.00"])


if __name__ == "__main__":
    COMMAND, FLOOR = (Path(argument).resolve() for argument in sys.argv[1:3])
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
