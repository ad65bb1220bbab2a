(() => {
"use strict";

const words = document.body.dataset;
const filled = (pattern, ...texts) => pattern.replace(/\{(\d)\}/g, (place, number) => texts[number] ?? place);

// Files and their neighbours. The page has them as names in lists; here these become links and a drawing.

const entryOf = name => document.getElementById("f:" + name);
const entryAt = hash => {
  const name = hash.slice(1);
  try {
    return document.getElementById(name) ?? document.getElementById(decodeURIComponent(name));
  } catch {
    return null;
  }
};
const titleOf = entry => entry.querySelector("summary").firstChild.textContent.trim();
// Of many files, the map's tree alone has the titles.
const hasTitle = entry => entry.querySelector("summary").firstChild.nodeType === Node.TEXT_NODE;
const copyTitles = () => {
  for (const link of document.querySelectorAll(".tree li:not([class]) > a, .tree .map > a")) {
    const entry = entryAt(link.hash);
    if (entry && !hasTitle(entry)) {
      entry.querySelector("summary").prepend(link.textContent + " ");
    }
  }
};
const outgoingWords = words.outgoing.split("|");
const incomingWords = words.incoming.split("|");

const listedIn = list => list
  ? [...list.querySelectorAll("dt")].map(term =>
      ({ kind: term.textContent, names: term.nextElementSibling.textContent.split(", ") }))
  : [];
const outgoingOf = entry => listedIn(entry.querySelector("dl:not(.in)"));

let incomingByName;
const gatherIncoming = () => {
  incomingByName = new Map();
  for (const entry of document.querySelectorAll(".files > details")) {
    const from = entry.id.slice(2);
    for (const { kind, names } of outgoingOf(entry)) {
      for (const name of names) {
        const kinds = incomingByName.get(name) ?? incomingByName.set(name, new Map()).get(name);
        const word = incomingWords[outgoingWords.indexOf(kind)];
        (kinds.get(word) ?? kinds.set(word, []).get(word)).push(from);
      }
    }
  }
};
const hasIncomingLists = document.querySelector("dl.in") !== null;
const incomingOf = entry => {
  if (hasIncomingLists) {
    return listedIn(entry.querySelector("dl.in"));
  }
  if (!incomingByName) {
    gatherIncoming();
  }
  return [...incomingByName.get(entry.id.slice(2)) ?? []].map(([kind, names]) => ({ kind, names }));
};

const linkTo = name => {
  const link = document.createElement("a");
  link.href = "#" + encodeURIComponent("f:" + name);
  link.textContent = name;
  return link;
};
const listOf = (groups, className) => {
  const list = document.createElement("dl");
  list.className = className;
  for (const { kind, names } of groups) {
    const term = document.createElement("dt");
    term.textContent = kind;
    const links = document.createElement("dd");
    names.forEach((name, index) => links.append(index ? ", " : "", linkTo(name)));
    list.append(term, links);
  }
  return list;
};

const element = (name, attributes, ...children) => {
  const made = document.createElementNS("http://www.w3.org/2000/svg", name);
  for (const [key, value] of Object.entries(attributes)) {
    made.setAttribute(key, value);
  }
  made.append(...children);
  return made;
};
const box = { width: 250, height: 30, gap: 16, most: 12, label: 150 };
const ruler = document.createElement("canvas").getContext("2d");
const cut = (text, width) => {
  ruler.font = "15px system-ui, sans-serif";
  let end = text.length;
  while (end > 1 && ruler.measureText(end < text.length ? text.slice(0, end) + "…" : text).width > width) {
    --end;
  }
  return end < text.length ? text.slice(0, end) + "…" : text;
};

const boxOf = (text, x, y, name) => {
  const shape = [
    element("rect", { x, y, width: box.width, height: box.height, rx: 3 }),
    element("text", { x: x + 10, y: y + 20 }, cut(text, box.width - 20)),
  ];
  return name === undefined
    ? element("g", { class: "here" }, ...shape)
    : element("a", { href: "#" + encodeURIComponent("f:" + name) }, element("title", {}, text), ...shape);
};
// Each neighbour once, with all the ways in which it is one.
const neighboursIn = groups => {
  const kindsOf = new Map();
  for (const { kind, names } of groups) {
    for (const name of names) {
      (kindsOf.get(name) ?? kindsOf.set(name, []).get(name)).push(kind);
    }
  }
  return [...kindsOf].map(([name, kinds]) => ({ name, kind: kinds.join(", ") }));
};
const labelOf = name => {
  const entry = entryOf(name);
  return entry ? titleOf(entry) : name;
};

// One column for who refers, one for the file, one for what it refers to.
const drawWide = (entry, incoming, outgoing) => {
  const step = box.height + box.gap;
  const rows = Math.max(incoming.length, outgoing.length, 1);
  const shownRows = Math.min(rows, box.most + 1);
  const height = shownRows * step + box.gap;
  const columns = [4, 504, 1004];
  const middle = height / 2;
  const parts = [];
  const side = (neighbours, x, isIncoming) => {
    const shown = neighbours.slice(0, neighbours.length > box.most + 1 ? box.most : box.most + 1);
    const count = shown.length + (shown.length < neighbours.length ? 1 : 0);
    let y = middle - (count * step - box.gap) / 2;
    const edge = isIncoming ? x + box.width : x;
    const end = isIncoming ? columns[1] : columns[1] + box.width;
    const turn = isIncoming ? edge + box.label : edge - box.label;
    const bend = (turn + end) / 2;
    for (const { kind, name } of shown) {
      const at = y + box.height / 2;
      parts.push(element("path", { d: `M${edge} ${at}H${turn}C${bend} ${at} ${bend} ${middle} ${end} ${middle}` }));
      parts.push(boxOf(labelOf(name), x, y, name));
      parts.push(element("text", {
        class: "kind", x: isIncoming ? edge + 6 : edge - 6, y: at - 5, "text-anchor": isIncoming ? "start" : "end",
      }, cut(kind, box.label)));
      y += step;
    }
    if (shown.length < neighbours.length) {
      parts.push(element("text", { class: "more", x: x + 10, y: y + 18 }, filled(words.more, neighbours.length - shown.length)));
    }
  };
  side(incoming, columns[0], true);
  side(outgoing, columns[2], false);
  parts.push(boxOf(titleOf(entry), columns[1], middle - box.height / 2));
  return { width: 1258, height, parts };
};

// One column, the file between those that refer to it and those that it refers to.
const drawNarrow = (entry, incoming, outgoing) => {
  const step = box.height + 26;
  const parts = [];
  let y = 20;
  const shownOf = neighbours => neighbours.slice(0, box.most);
  const spine = [];
  const row = ({ kind, name }) => {
    parts.push(element("text", { class: "kind", x: 40, y: y - 5 }, kind));
    parts.push(element("path", { d: `M16 ${y + box.height / 2}H40` }));
    parts.push(boxOf(labelOf(name), 40, y, name));
    spine.push(y + box.height / 2);
    y += step;
  };
  const rest = neighbours => {
    if (neighbours.length > box.most) {
      parts.push(element("text", { class: "more", x: 40, y: y - 4 }, filled(words.more, neighbours.length - box.most)));
      y += 20;
    }
  };
  shownOf(incoming).forEach(row);
  rest(incoming);
  parts.push(boxOf(titleOf(entry), 4, y));
  spine.push(y + box.height / 2);
  const here = y;
  y += step;
  shownOf(outgoing).forEach(row);
  rest(outgoing);
  const lines = [];
  if (spine[0] < here) {
    lines.push(element("path", { d: `M16 ${spine[0]}V${here}` }));
  }
  if (spine.at(-1) > here + box.height) {
    lines.push(element("path", { d: `M16 ${here + box.height}V${spine.at(-1)}` }));
  }
  return { width: 298, height: y, parts: [...lines, ...parts] };
};

const isNarrow = matchMedia("(max-width: 44rem)");
const drawingOf = entry => {
  const draw = isNarrow.matches ? drawNarrow : drawWide;
  const { width, height, parts } = draw(entry, neighboursIn(incomingOf(entry)), neighboursIn(outgoingOf(entry)));
  const drawing = element("svg", {
    viewBox: `0 0 ${width} ${height}`, role: "group", "aria-label": filled(words.drawing, titleOf(entry)),
  }, ...parts);
  drawing.style.maxWidth = width + "px";
  return drawing;
};

const show = entry => {
  if (!entry.querySelector("svg")) {
    const outgoing = outgoingOf(entry);
    const incoming = incomingOf(entry);
    const drawing = drawingOf(entry);
    entry.querySelectorAll("dl").forEach(list => list.remove());
    entry.append(drawing, listOf(incoming, "in"), listOf(outgoing, ""));
  }
};
document.addEventListener("toggle", event => {
  if (event.target.open && event.target.matches(".files > details")) {
    show(event.target);
  }
}, true);
// Places by name and line, "t1:12, t2:8 and 4 more".
const linkPlaces = details => {
  const places = details.lastChild;
  const made = document.createDocumentFragment();
  places.data.split(/(, | )/).forEach(part => {
    const name = part.replace(/:\d+$/, "");
    if (entryOf(name)) {
      const link = linkTo(name);
      link.textContent = part;
      made.append(link);
    } else {
      made.append(part);
    }
  });
  places.replaceWith(made);
};
document.addEventListener("toggle", event => {
  const isList = event.target.matches("#keys td:last-child > details");
  if (event.target.open && isList && event.target.lastChild.nodeType === Node.TEXT_NODE) {
    linkPlaces(event.target);
  }
}, true);

isNarrow.addEventListener("change", () => {
  for (const drawing of document.querySelectorAll(".files svg")) {
    drawing.replaceWith(drawingOf(drawing.closest("details")));
  }
});

const openTarget = () => {
  const target = entryAt(location.hash);
  if (target?.matches(".files > details")) {
    target.hidden = false;
    target.open = true;
    target.querySelector("summary").focus({ preventScroll: true });
    target.scrollIntoView();
  }
};
addEventListener("hashchange", openTarget);
openTarget();

// Search, a field for each part.

const rowsOf = { findings: ".cause > ol > li", map: ".tree li", excluded: "tbody tr", keys: "tbody tr", files: ".files > details" };

const ownText = row => {
  const list = row.closest(".tree") && row.querySelector(":scope > details");
  return (list ? [...row.childNodes].filter(node => node !== list).map(node => node.textContent).join(" ") : row.textContent)
    .toLocaleLowerCase();
};
const search = form => {
  const part = document.getElementById(form.dataset.part);
  const input = form.querySelector("input");
  const select = form.querySelector("select");
  let rows;
  const apply = () => {
    rows ??= [...part.querySelectorAll(rowsOf[part.id])].map(row => ({ row, text: ownText(row) }));
    const wanted = input.value.toLocaleLowerCase().split(/\s+/).filter(Boolean);
    const kind = select?.value ?? "";
    const isAll = wanted.length === 0 && kind === "";
    let count = 0;
    const kept = new Set();
    for (const { row, text } of rows) {
      const isKept = wanted.every(word => text.includes(word)) && (kind === "" || row.classList.contains(kind));
      count += isKept;
      if (isKept && !isAll) {
        for (let above = row; above && above !== part; above = above.parentElement) {
          kept.add(above);
        }
      }
    }
    for (const { row } of rows) {
      row.hidden = !isAll && !kept.has(row);
    }
    for (const group of part.querySelectorAll(".cause")) {
      group.hidden = !isAll && !kept.has(group);
    }
    for (const branch of part.querySelectorAll(".tree details")) {
      branch.dataset.open ??= branch.open;
      branch.open = isAll ? branch.dataset.open === "true" : kept.has(branch);
    }
    form.querySelector("output").textContent = isAll ? "" : filled(words.shown, count, rows.length);
  };
  let pending;
  form.addEventListener("input", () => {
    clearTimeout(pending);
    pending = setTimeout(apply, 80);
  });
  form.addEventListener("submit", event => event.preventDefault());
  input.addEventListener("keydown", event => {
    if (event.key === "Escape") {
      input.value = "";
      apply();
    }
  });
  form.hidden = false;
};
document.querySelectorAll(".search").forEach(search);
addEventListener("load", () => setTimeout(copyTitles));

document.addEventListener("keydown", event => {
  const isTyping = event.target.matches("input, select");
  if (event.key === "/" && !isTyping && !event.ctrlKey && !event.metaKey && !event.altKey) {
    const parts = [...document.querySelectorAll("main > section")];
    const read = parts.filter(part => part.getBoundingClientRect().top < innerHeight / 2);
    const input = (read.at(-1) ?? parts[0]).querySelector(".search input");
    if (input) {
      event.preventDefault();
      input.focus();
    }
  }
});

document.querySelectorAll(".scripted").forEach(part => { part.hidden = false; });
document.querySelectorAll(".scriptless").forEach(part => { part.hidden = true; });
})();
