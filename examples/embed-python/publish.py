"""Publishes a map from Python: publish.py MAP OUTPUT"""

import sys

import marrowpress


def main() -> int:
    if len(sys.argv) != 3:
        print("usage: publish.py MAP OUTPUT", file=sys.stderr)
        return 2
    try:
        result = marrowpress.publish(sys.argv[1], sys.argv[2])
    except marrowpress.PublishError as error:
        print(f"publish.py: {error}", file=sys.stderr)
        result = error.result
    except marrowpress.Error as error:
        print(f"publish.py: {error}", file=sys.stderr)
        return 1
    for finding in result.findings:
        print(f"{finding.file}:{finding.line}: {finding.text} [{finding.id}]", file=sys.stderr)
    for output in result.outputs:
        print(output)
    return 0 if result.is_published else 1


if __name__ == "__main__":
    sys.exit(main())
