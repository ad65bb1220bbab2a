#!/usr/bin/env python3
"""What `batch emit slurm` writes, run by Slurm: tests/engines/slurm_test.py [--command COMMAND]

One node and its controller on the loopback, without accounting, with a key and a munged of their own.
"""

import signal
import time

from engines import COUNT, IndexTest, main
from slurm_node import SlurmNode


class SlurmTest(IndexTest):
    programs = SlurmNode.PROGRAMS
    # The first one, which runs while nothing else has.
    KILLED = 0

    def setUp(self):
        super().setUp()
        self.node = SlurmNode(self)
        self.script = self.night.emit("slurm", self.night.plan)

    def test_each_task_of_the_array_is_a_job(self):
        with self.night.held():
            array = self.node.submit(self.script)
            self.node.wait_for(array, {self.KILLED: "RUNNING"})
            # It waits for its turn, and so would be there for long.
            time.sleep(0.5)
            self.node.call("scancel", "--batch", "--signal=KILL", f"{array}_{self.KILLED}")
            self.node.wait_for(array, {self.KILLED: "FAILED"})
        states = {**dict.fromkeys(range(COUNT), "COMPLETED"), self.FAILED: "FAILED",
                  self.KILLED: "FAILED"}
        tasks = self.node.wait_for(array, states)
        self.assertEqual({index: task["ExitCode"] for index, task in tasks.items()},
                         {**dict.fromkeys(range(COUNT), "0:0"), self.FAILED: "1:0",
                          self.KILLED: f"0:{int(signal.SIGKILL)}"})
        self.expect_merge({self.FAILED: "failed", self.KILLED: "not run"})

        self.node.requeue(f"{array}_{self.KILLED}")
        tasks = self.node.wait_for(array, {**states, self.KILLED: "COMPLETED"})
        self.assertEqual((tasks[self.KILLED]["ExitCode"], tasks[self.KILLED]["Restarts"]), ("0:0", "1"))
        self.assertEqual(tasks[self.FAILED]["Restarts"], "0")
        self.expect_merge({self.FAILED: "failed"})


if __name__ == "__main__":
    main()
