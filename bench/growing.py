"""Publications in which one thing grows and nothing else: a function for each, by its size."""

import json

from documents import (ROOT_MAP, SENTENCE, ditamap, paragraphs, text_key, topic, write)

LIBRARY_IDS = 50
DEFINITION_FILES = 10
MEGABYTE = 1_000_000
KEYREF_TARGETS = 100
# Of a topic of 3 KB, and of one of 0.4 KB.
PARAGRAPHS = 40
FEW_PARAGRAPHS = 3


def one_topic(folder, body, keys=()):
    """A map with one topic, which has all that grows."""
    write(folder, "topic.dita", topic("topic", body))
    write(folder, ROOT_MAP, ditamap([*keys, '<topicref href="topic.dita"/>']))


def text_keys(count):
    return [text_key(f"key{number}", f"Text {number}") for number in range(count)]


# Content references

def conrefs(folder, size, keys=0):
    """Content references, spread over the ids of a library."""
    write(folder, "library.dita", topic("library", "\n".join(paragraphs(LIBRARY_IDS, "p"))))
    one_topic(folder, "\n".join(f'<p conref="library.dita#library/p{number % LIBRARY_IDS}"/>'
                                for number in range(size)), text_keys(keys))


def conrefs_500_keys(folder, size):
    """The same beside 500 keys."""
    conrefs(folder, size, 500)


def conrefs_20000_keys(folder, size):
    """The same beside 20,000 keys."""
    conrefs(folder, size, 20_000)


def conrefs_to_last(folder, size, ids):
    write(folder, "library.dita", topic("library", "\n".join(paragraphs(ids, "p"))))
    line = f'<p conref="library.dita#library/p{ids - 1}"/>\n'
    one_topic(folder, line * size)


def conrefs_to_last_of_50(folder, size):
    """Content references to the last of 50 ids."""
    conrefs_to_last(folder, size, 50)


def conrefs_to_last_of_5000(folder, size):
    """Content references to the last of 5,000 ids."""
    conrefs_to_last(folder, size, 5000)


def pulled_definitions(folder, size, files):
    part = -(-size // files)
    pulled = []
    for file in range(files):
        entries = []
        for number in range(file * part, min((file + 1) * part, size)):
            entries.append(f'<dlentry id="e{number}"><dt>Term {number}</dt>'
                           f"<dd>{SENTENCE}</dd></dlentry>")
            pulled.append(f'<dlentry conref="terms{file}.dita#terms/e{number}">'
                          f"<dt/><dd/></dlentry>")
        write(folder, f"terms{file}.dita",
              topic("terms", "<dl>\n" + "\n".join(entries) + "\n</dl>"))
    one_topic(folder, "<dl>\n" + "\n".join(pulled) + "\n</dl>")


def definitions(folder, size):
    """Definition entries of one file, each pulled into a topic."""
    pulled_definitions(folder, size, 1)


def definitions_in_ten(folder, size):
    """Definition entries of ten files, each pulled into a topic."""
    pulled_definitions(folder, size, DEFINITION_FILES)


def ill_formed_conrefs(folder, size):
    """Content references into a file that is not well-formed."""
    text = topic("broken", "\n".join(paragraphs(LIBRARY_IDS, "p")))
    write(folder, "broken.dita", text.replace("</body>", ""))
    one_topic(folder, '<p conref="broken.dita#broken/p1"/>\n' * size)


def conref_range(folder, size):
    """One range over siblings of another file."""
    write(folder, "library.dita", topic("library", "\n".join(paragraphs(size, "p"))))
    one_topic(folder, '<p conref="library.dita#library/p0" '
                      f'conrefend="library.dita#library/p{size - 1}"/>')


# Keys

def unused_text_keys(folder, size):
    """Keys with a text."""
    one_topic(folder, f"<p>{SENTENCE}</p>", text_keys(size))


def keyrefs(folder, size):
    """Key references to 100 texts."""
    lines = (f'<p><ph keyref="key{number % KEYREF_TARGETS}"/></p>' for number in range(size))
    one_topic(folder, "\n".join(lines), text_keys(KEYREF_TARGETS))


def key_chain(folder, size):
    """Keys of which each leads to the next."""
    chain = [f'<keydef keys="key{number}" keyref="key{number + 1}"/>' for number in range(size - 1)]
    one_topic(folder, '<p><ph keyref="key0"/></p>',
              [*chain, text_key(f"key{size - 1}", "Chuck")])


# Maps

def nested_maps(folder, size):
    """Maps of which each refers to the next."""
    for number in range(size):
        name = f"map{number}.ditamap" if number else ROOT_MAP
        following = f"map{number + 1}.ditamap"
        line = (f'<topicref href="{following}" format="ditamap"/>' if number + 1 < size
                else '<topicref href="topic.dita"/>')
        write(folder, name, ditamap([line]))
    write(folder, "topic.dita", topic("topic", f"<p>{SENTENCE}</p>"))


def maps(folder, size):
    """Maps to which one map refers."""
    for number in range(size):
        write(folder, f"map{number}.ditamap", ditamap([text_key(f"key{number}", "Chuck")]))
    write(folder, "topic.dita", topic("topic", f"<p>{SENTENCE}</p>"))
    write(folder, ROOT_MAP, ditamap(
        [f'<topicref href="map{number}.ditamap" format="ditamap"/>' for number in range(size)] +
        ['<topicref href="topic.dita"/>']))


def topics(folder, size, lines):
    """Writes topics with so many paragraphs, and gives their names."""
    body = "\n".join(paragraphs(lines))
    names = [f"topic{number}.dita" for number in range(size)]
    for number, name in enumerate(names):
        write(folder, name, topic(f"t{number}", body))
    return names


def flat_map(folder, size, lines=PARAGRAPHS):
    """Topics of 3 KB at the first level of the map."""
    names = topics(folder, size, lines)
    write(folder, ROOT_MAP, ditamap([f'<topicref href="{name}"/>' for name in names]))


def components(folder, size):
    """The same with topics of 0.4 KB."""
    flat_map(folder, size, FEW_PARAGRAPHS)


def nested_topicrefs(folder, size):
    """Topics of 3 KB of which each is a level deeper than the one before."""
    names = topics(folder, size, PARAGRAPHS)
    write(folder, ROOT_MAP, ditamap([*(f'<topicref href="{name}">' for name in names),
                                     "</topicref>" * size]))


def topics_of_a_component(folder, size):
    """Topics of 0.4 KB below one reference."""
    names = topics(folder, size, FEW_PARAGRAPHS)
    below = [f'<topicref href="{name}"/>' for name in names[1:]]
    write(folder, ROOT_MAP, ditamap([f'<topicref href="{names[0]}">', *below, "</topicref>"]))


def references_to_one_topic(folder, size):
    """References of a map to one topic."""
    write(folder, "topic.dita", topic("topic", f"<p>{SENTENCE}</p>"))
    write(folder, ROOT_MAP, ditamap(['<topicref href="topic.dita"/>'] * size))


def open_documents(folder, size):
    """Documents that are open in the application."""
    flat_map(folder, 100, FEW_PARAGRAPHS)
    opened = [{"id": number + 1, "path": str(folder.resolve() / f"topic{number}.dita"), "flag": 0}
              for number in range(size)]
    write(folder, "open.json", json.dumps(opened))


# Topics

def xrefs(folder, size):
    """Cross references to two other topics."""
    lines = (f'<p><xref href="other{number % 2}.dita"/></p>' for number in range(size))
    one_topic(folder, "\n".join(lines))
    for number in range(2):
        write(folder, f"other{number}.dita", topic(f"other{number}", f"<p>{SENTENCE}</p>"))
    write(folder, ROOT_MAP, ditamap([f'<topicref href="{name}.dita"/>'
                                     for name in ("topic", "other0", "other1")]))


def megabytes(folder, size):
    """One topic of so many megabytes."""
    block = "".join(f"<p>{SENTENCE} <b>{SENTENCE}</b> {SENTENCE}</p>\n" for _ in range(4))
    one_topic(folder, block * (size * MEGABYTE // len(block)))


def list_levels(folder, size):
    """Lists of which each is inside the one before."""
    one_topic(folder, "<ul><li>" * size + SENTENCE + "</li></ul>" * size)


def siblings(folder, size):
    """Paragraphs of one topic."""
    one_topic(folder, f"<p>{SENTENCE}</p>\n" * size)


def fragments(folder, size):
    """References to parts of one file, in one component."""
    parts = "".join(f'<topic id="part{number}"><title>Part {number}</title>'
                    f"<body><p>{SENTENCE}</p></body></topic>\n" for number in range(size))
    text = topic("parts", f"<p>{SENTENCE}</p>")
    write(folder, "parts.dita", text.replace("</body></topic>", f"</body>{parts}</topic>"))
    write(folder, "first.dita", topic("first", f"<p>{SENTENCE}</p>"))
    below = [f'<topicref href="parts.dita#part{number}"/>' for number in range(size)]
    write(folder, ROOT_MAP, ditamap(['<topicref href="first.dita">', *below, "</topicref>"]))


def conditions(folder, size):
    """Conditions that two sources of a component define, each in its own way."""
    for name, state in (("first", "show"), ("second", "hide")):
        definitions_in_front = "".join(f"<?Qs Condition C{number} 1 {name} {state} z?>\n"
                                       for number in range(size))
        lines = (f"<p><?Qs Condstart C{number}?>{SENTENCE}<?Qs Condend C{number}?></p>"
                 for number in range(size))
        write(folder, f"{name}.dita", topic(name, "\n".join(lines), definitions_in_front))
    write(folder, ROOT_MAP, ditamap(
        ['<topicref href="first.dita"><topicref href="second.dita"/></topicref>']))


GENERATORS = {function.__name__.replace("_", "-"): function for function in (
    conrefs, conrefs_500_keys, conrefs_20000_keys, conrefs_to_last_of_50, conrefs_to_last_of_5000,
    definitions, definitions_in_ten, ill_formed_conrefs, conref_range, unused_text_keys, keyrefs,
    key_chain, nested_maps, maps, flat_map, components, nested_topicrefs, topics_of_a_component,
    references_to_one_topic, open_documents, xrefs, megabytes, list_levels, siblings, fragments,
    conditions)}
