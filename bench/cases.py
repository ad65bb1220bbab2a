"""What is measured: publications, the figures that are made of their costs, and the goals."""

import math
from dataclasses import dataclass, field

COMPOSITE = "composite"
FLAT_BOOK = "flatbook"


@dataclass(frozen=True)
class Point:
    """A publication that bench/generate writes, and the output that is made of it."""
    generator: str
    size: int
    output: str = COMPOSITE

    @property
    def name(self):
        return f"{self.generator}-{self.size}"


@dataclass
class Costs:
    """What the publication of a point and its floor cost, each round by itself.

    Instructions are a list too, of one number or none; memory is in bytes.
    """
    cpu: list = field(default_factory=list)
    floor_cpu: list = field(default_factory=list)
    memory: list = field(default_factory=list)
    floor_memory: list = field(default_factory=list)
    instructions: list = field(default_factory=list)
    floor_instructions: list = field(default_factory=list)
    source_bytes: int = 0


def median(values):
    ordered = sorted(values)
    middle = len(ordered) // 2
    return ordered[middle] if len(ordered) % 2 else (ordered[middle - 1] + ordered[middle]) / 2


def in_each_unit(costs, tell):
    """A text for each unit of cost that was measured at all points.

    `tell` gets the name of the unit and a number for each point.
    """
    texts = []
    if all(cost.instructions for cost in costs):
        texts.append("Ir " + tell("instructions", [cost.instructions[0] for cost in costs]))
    if all(cost.cpu for cost in costs):
        texts.append("CPU " + tell("cpu", [median(cost.cpu) for cost in costs]))
    return texts


def amount(unit, number):
    if unit == "instructions":
        return f"{number / 1e6:,.3f} M" if abs(number) < 1e7 else f"{number / 1e6:,.0f} M"
    return f"{number * 1e3:,.3f} ms" if abs(number) < 0.01 else f"{number:,.2f} s"


def ratio_of(number, other):
    """Of differences, which may be nothing when they are small and the machine is busy."""
    return f"{number / other:.2f}" if other > 0 else "-"


def over_floor(costs):
    """P, F' and their ratio; of CPU the median of the ratios of each round."""
    cost, = costs
    texts = []
    if cost.instructions and cost.floor_instructions:
        number, floor = cost.instructions[0], cost.floor_instructions[0]
        texts.append(f"Ir {number / 1e6:,.0f} / {floor / 1e6:,.0f} M = {number / floor:.2f}")
    if cost.cpu and cost.floor_cpu:
        ratios = [own / floor for own, floor in zip(cost.cpu, cost.floor_cpu)]
        texts.append(f"CPU {median(ratios):.2f} ({median(cost.cpu):.2f} s)")
        memory, floor_memory = median(cost.memory), median(cost.floor_memory)
        more = (memory - floor_memory) / max(cost.source_bytes, 1)
        texts.append(f"memory {memory / floor_memory:.2f} ({memory / 1e6:,.0f} MB, "
                     f"{more:.1f} B a source byte more)")
    return texts


def each_further(points):
    """What one further thing costs, of two sizes."""
    small, large = (point.size for point in points)
    return lambda costs: in_each_unit(costs, lambda unit, numbers: amount(
        unit, (numbers[1] - numbers[0]) / (large - small)))


def compared(points):
    """The same of two generators, each at two sizes, and how often the first is in the second."""
    def tell(unit, numbers):
        each = [(numbers[index + 1] - numbers[index]) /
                (points[index + 1].size - points[index].size) for index in (0, 2)]
        return (f"{amount(unit, each[0])} and {amount(unit, each[1])}, "
                f"{ratio_of(each[1], each[0])} times")
    return lambda costs: in_each_unit(costs, tell)


def whole(costs):
    """What each point costs as it is, and the last as a multiple of the first."""
    return in_each_unit(costs, lambda unit, numbers: " and ".join(
        amount(unit, number) for number in numbers) + (
            f", {ratio_of(numbers[-1], numbers[0])} times" if len(numbers) > 1 else ""))


def growth(costs):
    """The exponent of growth between the second and the third of sizes that are tenfold each."""
    def tell(_, numbers):
        first, second = numbers[1] - numbers[0], numbers[2] - numbers[0]
        return f"{math.log10(second / first):.3f}" if first > 0 and second > 0 else "-"
    return in_each_unit(costs, tell)


def linear(points):
    """What one thing costs, and the exponent of growth, of sizes that are double each."""
    def tell(unit, numbers):
        first, second = numbers[1] - numbers[0], numbers[2] - numbers[1]
        exponent = f"{math.log2(second / first):.2f}" if first > 0 and second > 0 else "-"
        each = (numbers[2] - numbers[0]) / (points[2].size - points[0].size)
        return f"{amount(unit, each)} each, exponent {exponent}"
    return lambda costs: in_each_unit(costs, tell)


@dataclass(frozen=True)
class Case:
    name: str
    what: str
    goal: str
    points: list
    figure: object
    has_floor: bool = False
    is_goal: bool = True


def ratio_case(name, what, goal, point):
    return Case(name, what, goal, [point], over_floor, has_floor=True)


def each_case(name, what, goal, points):
    return Case(name, what, goal, points, each_further(points))


def compared_case(name, what, goal, points):
    return Case(name, what, goal, points, compared(points))


def linear_case(name, what, generator, size, output=COMPOSITE):
    points = [Point(generator, size // parts, output) for parts in (4, 2, 1)]
    return Case(name, what, "linear: exponent 1", points, linear(points), is_goal=False)


def sizes(generator, small, large, output=COMPOSITE):
    return [Point(generator, small, output), Point(generator, large, output)]


CASES = [
    ratio_case("topics-1", "map and 1 topic, P / F'", "Ir 540 M, 1.18", Point("corpus", 1)),
    ratio_case("topics-10", "map and 10 topics of four types, P / F'", "Ir 1.10, memory 1.10",
               Point("corpus", 10)),
    ratio_case("topics-100", "100 topics, P / F'", "Ir 1.14", Point("corpus", 100)),
    ratio_case("topics-1000", "1,000 topics, P / F'", "Ir 1.20, CPU 1.30, memory 1.10",
               Point("corpus", 1000)),
    ratio_case("topics-10000", "10,000 topics, P / F'",
               "Ir 1.20, CPU 1.30, memory 5 B a source byte more", Point("corpus", 10_000)),
    Case("growth", "growth from 1,000 to 10,000 topics, as an exponent", "Ir at most 1.05",
         [Point("corpus", size) for size in (100, 1000, 10_000)], growth),
    each_case("conref", "one further external conref, library of 50 ids", "Ir 0.100 M",
              sizes("conrefs", 1000, 2000)),
    each_case("conref-500-keys", "the same with 500 keys", "the same",
              sizes("conrefs-500-keys", 1000, 2000)),
    each_case("conref-20000-keys", "the same with 20,000 keys", "the same",
              sizes("conrefs-20000-keys", 1000, 2000)),
    compared_case("conref-to-last", "one conref to the last of 50 ids, and of 5,000", "1.2 times",
                  sizes("conrefs-to-last-of-50", 500, 1000) +
                  sizes("conrefs-to-last-of-5000", 500, 1000)),
    Case("definitions", "10,000 entries pulled into one topic, from ten files and from one",
         "0.8 s both, 1.3 times",
         [Point("definitions-in-ten", 10_000), Point("definitions", 10_000)], whole),
    each_case("text-key", "one further text key", "Ir 0.320 M",
              sizes("unused-text-keys", 1000, 2000)),
    Case("invalid", "1,000 valid topics, and with 200 of them invalid", "1.1 times",
         [Point("corpus", 1000), Point("corpus-with-invalid", 1000)], whole),
    each_case("ill-formed", "one further conref into a file that is not well-formed", "Ir 1 M",
              sizes("ill-formed-conrefs", 10, 30)),
    each_case("component", "one further component of a flat book, one topic of 0.4 KB", "Ir 2 M",
              sizes("components", 10, 30, FLAT_BOOK)),
    compared_case("levels", "one topic of a flat map, and of 300 levels", "1.0 times",
                  sizes("flat-map", 1, 300) + sizes("nested-topicrefs", 1, 300)),
    ratio_case("megabytes", "one topic of 50 MB, P / F'", "CPU 1.15, memory 1.01",
               Point("megabytes", 50)),
    Case("conditions", "two sources of a component with the same 800 and 3,200 conditions",
         "3,200 in 0.3 s", sizes("conditions", 800, 3200, FLAT_BOOK), whole),
    Case("fragments", "500 and 2,000 references to parts of one file in a component",
         "2,000 in 0.3 s", sizes("fragments", 500, 2000, FLAT_BOOK), whole),
    linear_case("conref-range", "siblings of a conref range", "conref-range", 10_000),
    linear_case("keyrefs", "key references", "keyrefs", 40_000),
    linear_case("xrefs", "cross references", "xrefs", 20_000),
    linear_case("key-chain", "keys that lead to each other", "key-chain", 4000),
    linear_case("nested-maps", "maps in each other", "nested-maps", 400),
    linear_case("maps", "maps beside each other", "maps", 1000),
    linear_case("open-documents", "open documents", "open-documents", 10_000),
    linear_case("one-topic", "references to one topic", "references-to-one-topic", 5000),
    linear_case("topics-of-a-component", "topics of a component", "topics-of-a-component", 1600,
                FLAT_BOOK),
    linear_case("list-levels", "levels of lists in a topic", "list-levels", 2400),
    linear_case("siblings", "siblings in a topic", "siblings", 100_000),
]
