"""A publication like those that people have, of any size: the same bytes for the same seed.

Topics of about 3 KB, of four types in turn. Each has four key references, two or three cross
references, one or two content references into another file, and a related link. The maps have 100
topics each, nested up to four deep; each map defines text keys, and keys of some of its topics.
"""

import random

from documents import ROOT_MAP, ditamap, document, text_key, topic, write

TYPES = ("topic", "concept", "task", "reference")
TOPICS_OF_A_MAP = 100
LEVELS = 4
# One in five topics, and as many texts, have a key.
KEY_STRIDE = 5
LIBRARY_IDS = 50
TOPICS_OF_A_LIBRARY = 100
INVALID_STRIDE = 5
WORDS = """adapter battery bearing belt bit blade bolt brush button cable cap charger chuck clamp
collar cover drill drive edge fan filter flange gear grip guard handle hinge hose housing key knob
lamp latch lever lock motor mount nut oil panel pin plate plug pump ring rod rotor screw seal shaft
shield sleeve socket spindle spring stand stop strap switch tank tool tray tube valve vent washer
wheel wire check clean close fasten fit hold insert lift loosen move open press pull push release
remove replace set slide tighten turn wipe""".split()


class Corpus:
    """One publication, in the making."""

    def __init__(self, folder, size, seed, has_invalid):
        self.folder = folder
        self.size = size
        self.random = random.Random(seed)
        self.has_invalid = has_invalid
        self.keys = max(1, size // KEY_STRIDE)

    def write(self):
        for number in range(self.libraries()):
            write(self.folder, f"common/library{number}.dita", self.library(number))
        for number in range(self.size):
            write(self.folder, self.path(number), self.topic(number))
        self.write_maps()

    def libraries(self):
        return -(-self.size // TOPICS_OF_A_LIBRARY)

    def library(self, number):
        lines = (f'<p id="shared{each}">{self.sentence()}</p>' for each in range(LIBRARY_IDS))
        return topic(f"library{number}", "\n".join(lines))

    @staticmethod
    def path(number):
        return f"topics/{number // TOPICS_OF_A_MAP:03}/t{number:06}.dita"

    def path_from_topic(self, number):
        return "../" + self.path(number).removeprefix("topics/")

    def sentence(self, words=14):
        text = " ".join(self.random.choices(WORDS, k=words))
        return text[0].upper() + text[1:] + "."

    def any_topic(self):
        return self.random.randrange(self.size)

    def any_topic_key(self):
        return f"topic{self.random.randrange(self.keys) * KEY_STRIDE}"

    def shared(self, tag):
        """A content reference to a paragraph of a library."""
        library = self.random.randrange(self.libraries())
        place = f"shared{self.random.randrange(LIBRARY_IDS)}"
        return f'<{tag} conref="../../common/library{library}.dita#library{library}/{place}"/>'

    def text_by_key(self):
        return f'<ph keyref="text{self.random.randrange(self.keys)}"/>'

    def cross_reference(self):
        number = self.any_topic()
        return f'<xref href="{self.path_from_topic(number)}#t{number:06}">{self.sentence(3)}</xref>'

    def blocks(self, number):
        """What stands in any of the four types: 3 KB of it, with all references."""
        blocks = [
            f"<p>{self.sentence()} {self.text_by_key()} {self.sentence()} {self.text_by_key()}</p>",
            f'<p>{self.sentence()} <xref keyref="{self.any_topic_key()}"/>, '
            f'<xref keyref="{self.any_topic_key()}"/></p>',
            f"<p>{self.cross_reference()} {self.sentence()} {self.cross_reference()}</p>",
            self.shared("p"),
        ]
        if self.random.random() < 0.5:
            blocks.append(f"<p>{self.cross_reference()}</p>")
        if self.random.random() < 0.6:
            blocks.append(self.shared("p"))
        items = "".join(f'<li id="t{number:06}-item{each}">{self.sentence(9)}</li>\n'
                        for each in range(4))
        blocks.append(f"<ul>\n{items}</ul>")
        blocks.append(f"<note>{self.sentence()}</note>")
        blocks += [f"<p>{self.sentence()} <b>{self.sentence(2)}</b> {self.sentence()}</p>"
                   for _ in range(6)]
        self.random.shuffle(blocks)
        return blocks

    def topic(self, number):
        kind = TYPES[number % len(TYPES)]
        blocks = self.blocks(number)
        related = self.any_topic()
        invalid = ' colour="red"' if self.has_invalid and number % INVALID_STRIDE == 0 else ""
        return document(kind, "\n".join([
            f'<{kind} id="t{number:06}">', f"<title>{self.sentence(4)}</title>",
            f"<shortdesc{invalid}>{self.sentence()}</shortdesc>",
            getattr(self, f"{kind}_body")(blocks),
            f'<related-links><link href="{self.path_from_topic(related)}"/></related-links>',
            f"</{kind}>"]))

    @staticmethod
    def topic_body(blocks):
        return "<body>\n" + "\n".join(blocks) + "\n</body>"

    def concept_body(self, blocks):
        half = len(blocks) // 2
        return "\n".join(["<conbody>", *blocks[:half], f"<section><title>{self.sentence(3)}</title>",
                          *blocks[half:], "</section>", "</conbody>"])

    def task_body(self, blocks):
        steps = [f"<step><cmd>{self.sentence(6)}</cmd><info>{block}</info></step>"
                 for block in blocks[3:]]
        return "\n".join(["<taskbody>", "<context>", *blocks[:3], "</context>", "<steps>", *steps,
                          "</steps>", "</taskbody>"])

    def reference_body(self, blocks):
        rows = [f"<property><propvalue>{self.sentence(2)}</propvalue>"
                f"<propdesc>{self.sentence(5)}</propdesc></property>" for _ in range(2)]
        return "\n".join(["<refbody>", "<section>", *blocks, "</section>", "<properties>", *rows,
                          "</properties>", "</refbody>"])

    def write_maps(self):
        starts = range(0, self.size, TOPICS_OF_A_MAP)
        if len(starts) == 1:
            write(self.folder, ROOT_MAP, self.map(0, ""))
            return
        lines = []
        for start in starts:
            name = f"maps/part{start // TOPICS_OF_A_MAP:03}.ditamap"
            write(self.folder, name, self.map(start, "../"))
            lines.append(f'<topicref href="{name}" format="ditamap"/>')
        write(self.folder, ROOT_MAP, ditamap(lines, "Workshop"))

    def map(self, start, to_root):
        end = min(start + TOPICS_OF_A_MAP, self.size)
        keys = range(-(-start // KEY_STRIDE), -(-end // KEY_STRIDE))
        lines = [text_key(f"text{key}", self.sentence(2).rstrip(".")) for key in keys]
        return ditamap(lines + self.topic_references(range(start, end), to_root),
                       self.sentence(3).rstrip("."))

    def topic_references(self, numbers, to_root):
        """The references to some topics, each at most one level below the one before it."""
        lines, level = [], 0
        for number in numbers:
            next_level = self.random.randint(1, min(level + 1, LEVELS))
            lines += ["</topicref>"] * (level - next_level + 1)
            level = next_level
            key = f' keys="topic{number}"' if number % KEY_STRIDE == 0 else ""
            lines.append(f'<topicref href="{to_root}{self.path(number)}"{key}>')
        return lines + ["</topicref>"] * level


def write_corpus(folder, size, seed, has_invalid=False):
    Corpus(folder, size, seed, has_invalid).write()
