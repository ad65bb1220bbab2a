#!/usr/bin/env python3
"""What `batch emit make` writes, run by make: tests/engines/make_test.py [--command COMMAND] [TEST...]"""

from build_tool import BuildToolTest
from engines import EngineTest, main


class MakeTest(BuildToolTest, EngineTest):
    engine = "make"
    programs = ("make",)
    tool = ("make", "--keep-going", "--jobs=2", "-f")
    failure = 2

    def expect_nothing_to_do(self):
        called = self.night.call(["make", "-q", "-f", self.script])
        self.assertEqual((called.code, called.text), (0, ""))


if __name__ == "__main__":
    main()
