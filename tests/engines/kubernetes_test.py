#!/usr/bin/env python3
"""What `batch emit kubernetes` writes, taken as a cluster takes it:

    tests/engines/kubernetes_test.py [--command COMMAND]

The manifest is parsed, and its command run for each index. There is no cluster.
"""

import os
import re
import unittest

from engines import COUNT, IndexTest, main

try:
    import yaml
except ImportError:
    yaml = None

VARIABLE = re.compile(r"\$\$|\$\(([^)]*)\)")


def expanded(word, environment):
    """As Kubernetes expands words of a command: what is no variable stays, and `$$` is `$`."""
    def value(found):
        return "$" if found[1] is None else environment.get(found[1], found[0])
    return VARIABLE.sub(value, word)


def command_of(manifest, index, night):
    """The command of the manifest's container, its folder, and what its environment has besides."""
    container = manifest["spec"]["template"]["spec"]["containers"][0]
    environment = {"JOB_COMPLETION_INDEX": str(index),
                   "PATH": f"{night.command.parent}:{os.environ['PATH']}"}
    command = [expanded(word, environment) for word in container["command"]]
    return command, container["workingDir"], environment


@unittest.skipUnless(yaml, "python3-yaml is not installed")
class KubernetesTest(IndexTest):
    def setUp(self):
        super().setUp()
        script = self.night.emit("kubernetes", self.night.plan)
        self.manifest = yaml.safe_load(script.read_text(encoding="utf-8"))
        self.pod = self.manifest["spec"]["template"]["spec"]
        self.container = self.pod["containers"][0]

    def test_the_job_is_an_indexed_one_with_an_index_for_each_job(self):
        spec = self.manifest["spec"]
        self.assertEqual((self.manifest["apiVersion"], self.manifest["kind"]), ("batch/v1", "Job"))
        self.assertEqual((spec["completionMode"], spec["completions"]), ("Indexed", COUNT))
        # A job that fails keeps no other from running, and is not tried again by itself.
        self.assertEqual((spec["backoffLimitPerIndex"], spec["maxFailedIndexes"]), (0, COUNT))
        self.assertEqual(self.pod["restartPolicy"], "Never")

    def test_the_volume_has_all_that_the_jobs_read_and_write(self):
        mount, volume = self.container["volumeMounts"][0], self.pod["volumes"][0]
        self.assertEqual(mount["name"], volume["name"])
        self.assertEqual(mount["mountPath"], volume["hostPath"]["path"])
        # One with a colon would be refused.
        self.assertNotIn(":", mount["mountPath"])
        for path in (self.night.sources, self.night.out, self.night.plan, self.night.results):
            self.assertTrue(path.is_relative_to(mount["mountPath"]), path)

    def test_each_index_is_a_job(self):
        self.check_night(lambda index: command_of(self.manifest, index, self.night))


if __name__ == "__main__":
    main()
