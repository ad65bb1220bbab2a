"""What the generators share: documents of DITA's types as texts, and files of a publication.

A publication is a folder with `root.ditamap`. All that it needs is in there, but for the DTDs, which
are found by their public identifiers.
"""

PUBLIC_IDS = {
    "map": ("-//OASIS//DTD DITA Map//EN", "map.dtd"),
    "topic": ("-//OASIS//DTD DITA Topic//EN", "topic.dtd"),
    "concept": ("-//OASIS//DTD DITA Concept//EN", "concept.dtd"),
    "task": ("-//OASIS//DTD DITA Task//EN", "task.dtd"),
    "reference": ("-//OASIS//DTD DITA Reference//EN", "reference.dtd"),
}
ROOT_MAP = "root.ditamap"
SENTENCE = "Loosen the collar with the key, and pull the chuck off its seat."


def document(kind, content, before_root=""):
    """A document of a type; `content` begins with the root's start tag."""
    public_id, system_id = PUBLIC_IDS[kind]
    return (f'<?xml version="1.0" encoding="UTF-8"?>\n'
            f'<!DOCTYPE {kind} PUBLIC "{public_id}" "{system_id}">\n'
            f"{before_root}{content}\n")


def topic(identifier, body, before_root="", title=None):
    return document("topic", f'<topic id="{identifier}"><title>{title or identifier}</title>\n'
                             f"<body>\n{body}\n</body></topic>", before_root)


def ditamap(lines, title=None):
    shown = f"<title>{title}</title>\n" if title else ""
    return document("map", f"<map>{shown}" + "\n".join(lines) + "\n</map>")


def text_key(name, text):
    return (f'<keydef keys="{name}"><topicmeta><keywords><keyword>{text}</keyword></keywords>'
            f"</topicmeta></keydef>")


def paragraphs(count, prefix=None):
    """Lines of text, each with an id if there is a prefix for it."""
    for number in range(count):
        identifier = f' id="{prefix}{number}"' if prefix else ""
        yield f"<p{identifier}>{SENTENCE}</p>"


def write(folder, name, text):
    path = folder / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text, encoding="utf-8")
