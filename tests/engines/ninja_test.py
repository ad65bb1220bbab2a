#!/usr/bin/env python3
"""What `batch emit ninja` writes, run by ninja: tests/engines/ninja_test.py [--command COMMAND] [TEST...]"""

from build_tool import BuildToolTest
from engines import EngineTest, main


class NinjaTest(BuildToolTest, EngineTest):
    engine = "ninja"
    programs = ("ninja",)
    tool = ("ninja", "-k", "0", "-f")
    failure = 1

    def expect_nothing_to_do(self):
        called = self.build()
        self.assertEqual((called.code, called.text), (0, "ninja: no work to do.\n"))


if __name__ == "__main__":
    main()
