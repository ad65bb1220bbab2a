// The page of `--report` in chromium: search, links, drawings, keyboard, and without script.
//
//   MARROWPRESS=build/dev/bin/marrowpress node --test tests/report/page_test.mjs
//
// With SCREENSHOTS=FOLDER, pictures of the page in light and dark, wide and narrow, go there.

import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { mkdtempSync, mkdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";
import { after, before, test } from "node:test";
import puppeteer from "puppeteer-core";

const command = resolve(process.env.MARROWPRESS);
const examples = resolve(import.meta.dirname, "../../examples");
const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
const folder = mkdtempSync(join(tmpdir(), "marrowpress-report-"));
const wide = { width: 1280, height: 900 };
const narrow = { width: 390, height: 800 };

const report = (name, ...given) => {
  const file = join(folder, name + ".html");
  const run = spawnSync(command, ["check", "--lang", "en", "--report", file, ...given], { encoding: "utf8" });
  assert.ok(run.status === 0 || run.status === 3, run.stderr);
  return file;
};

// Topics with long names that all link to each other, and one that a profile leaves out.
const writeGuide = () => {
  const guide = join(folder, "guide");
  mkdirSync(join(guide, "<"), { recursive: true });
  const names = Array.from({ length: 60 }, (_, number) => "a-topic-with-a-name-that-is-as-long-as-names-may-be-" + number);
  for (const name of names) {
    const links = names.filter(other => other !== name)
      .map(other => `<xref href="${other}.dita">${other}</xref>`).join(" ");
    writeFileSync(join(guide, name + ".dita"), `<!DOCTYPE topic PUBLIC "-//OASIS//DTD DITA Topic//EN" "topic.dtd">
<topic id="t"><title>Title of ${name.slice(-2)}</title><body><p>${links}</p></body></topic>`);
  }
  writeFileSync(join(guide, "</script><img src=x onerror=alert(1)>.dita"), "<topic id='x'><title>&lt;/script>&lt;b>Hostile</title></topic>");
  writeFileSync(join(guide, "g.ditaval"), `<val><prop att="audience" val="expert" action="exclude"/></val>`);
  writeFileSync(join(guide, "g.ditamap"), `<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "map.dtd">
<map><title>&lt;/script>&lt;script>alert(1)&lt;/script></title>
${names.map(name => `<topicref href="${name}.dita"/>`).join("\n")}
<topicref href="&lt;/script>&lt;img src=x onerror=alert(1)>.dita"/>
<topicref href="experts.dita" audience="expert" navtitle="For experts"/>
<keydef keys="&lt;img&#x20;src=x>" href="&lt;img>.dita"/></map>`);
  return report("guide", join(guide, "g.ditamap"), "--filter", join(guide, "g.ditaval"));
};

let browser, drill, guide;
before(async () => {
  drill = report("drill", join(examples, "drill-guide/drill-guide.ditamap"), "--filter", join(examples, "drill-guide/home.ditaval"));
  guide = writeGuide();
  browser = await puppeteer.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox", "--disable-gpu"] });
});
after(async () => {
  await browser?.close();
  rmSync(folder, { recursive: true });
});

// Opens the page; at the end of `use` nothing but the file was asked for, and no script failed.
const open = async (file, use, { viewport = wide, scheme = "light", isScripted = true } = {}) => {
  const page = await browser.newPage();
  const faults = [];
  page.on("pageerror", error => faults.push(error.message));
  page.on("console", message => faults.push(message.text()));
  page.on("dialog", dialog => { faults.push("dialog"); dialog.dismiss(); });
  page.on("request", request => {
    if (request.url().split("#")[0] !== "file://" + file) {
      faults.push(request.url());
    }
  });
  await page.setViewport(viewport);
  await page.setJavaScriptEnabled(isScripted);
  await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: scheme }]);
  await page.goto("file://" + file);
  await use(page);
  assert.deepEqual(faults, []);
  await page.close();
};
const shownRows = (page, rows) => page.$$eval(rows, all => all.filter(row => !row.hidden).map(row => row.textContent));
const type = async (page, part, text) => {
  await page.focus(`#${part} .search input`);
  await page.keyboard.type(text);
  await page.waitForFunction(name => document.querySelector(`#${name} output`).textContent !== "", {}, part);
};

test("search leaves the rows that hold all words, and Escape all of them", () => open(drill, async page => {
  const all = (await shownRows(page, "#keys tbody tr")).length;
  await type(page, "keys", "SPEEDS used");
  const found = await shownRows(page, "#keys tbody tr");
  assert.equal(found.length, 1, found.join("\n"));
  assert.match(found[0], /^speeds/);
  assert.equal(await page.$eval("#keys output", output => output.textContent), `1 of ${all}`);
  await page.keyboard.press("Escape");
  assert.equal((await shownRows(page, "#keys tbody tr")).length, all);
}));

test("a choice leaves the rows of its kind", () => open(guide, async page => {
  await page.select("#keys select", "unused");
  await page.waitForFunction(() => document.querySelector("#keys output").textContent !== "");
  const left = await page.$$eval("#keys tbody tr", rows => rows.filter(row => !row.hidden).map(row => row.className));
  assert.ok(left.length > 0);
  assert.ok(left.every(kind => kind === "unused"), left.join());
}));

test("search in the map shows what is found and the way to it", () => open(guide, async page => {
  await type(page, "map", "experts");
  const found = await shownRows(page, "#map .tree li");
  assert.equal(found.length, 1);
  assert.match(found[0], /For experts excluded audience="expert"/);
}));

test("search in findings takes away causes without any", () => open(drill, async page => {
  await type(page, "findings", "no such words");
  assert.deepEqual(await shownRows(page, "#findings .cause"), []);
}));

test("a link of the map opens the file's entry and draws its neighbours", () => open(drill, async page => {
  await page.evaluate(() => document.querySelector("#map .tree a[href='#f:safety']").click());
  await page.waitForSelector("#f\\:safety[open] svg");
  const drawn = await page.$$eval("#f\\:safety svg a", links => links.map(link => link.getAttribute("href")));
  assert.ok(drawn.includes("#f%3Adrill-guide"), drawn.join());
  assert.ok(drawn.includes("#f%3Asymbols"), drawn.join());
  const label = await page.$eval("#f\\:safety svg", drawing => drawing.getAttribute("aria-label"));
  assert.match(label, /^Neighbours of Working safely/);
  assert.equal(await page.evaluate(() => document.activeElement.parentElement.id), "f:safety");
}));

test("a neighbour in the drawing leads on, by the keyboard too", () => open(drill, async page => {
  await page.goto(page.url() + "#f:safety");
  await page.waitForSelector("#f\\:safety[open] svg");
  await page.$eval("#f\\:safety svg a[href='#f%3Asymbols']", link => link.focus());
  await page.keyboard.press("Enter");
  await page.waitForSelector("#f\\:symbols[open] svg");
}));

test("who refers is the same whether the page lists it or the script finds it", () => open(guide, async page => {
  assert.equal(await page.$("dl.in"), null);
  const name = "a-topic-with-a-name-that-is-as-long-as-names-may-be-7";
  await page.evaluate(id => { document.getElementById("f:" + id).open = true; }, name);
  await page.waitForFunction(id => document.getElementById("f:" + id).querySelector("dl.in"), {}, name);
  const groups = await page.evaluate(id => [...document.getElementById("f:" + id).querySelectorAll("dl.in dt")]
    .map(term => [term.textContent, term.nextElementSibling.textContent.split(", ").length]), name);
  assert.deepEqual(Object.fromEntries(groups), { "taken in by": 1, "linked from": 59 });
  const drawn = await page.$$eval("details[open] > svg > a", links => links.length);
  assert.equal(drawn, 24);
  const tooWide = await page.$$eval("details[open] > svg > a", links => links.filter(link =>
    link.querySelector("text").getBBox().width > link.querySelector("rect").getBBox().width - 10).length);
  assert.equal(tooWide, 0);
}));

test("places of uses become links where they are opened", () => open(drill, async page => {
  await page.evaluate(() => { document.querySelector("#keys td:last-child > details").open = true; });
  await page.waitForSelector("#keys td:last-child > details > a");
  const link = await page.$eval("#keys td:last-child > details > a", link => link.getAttribute("href"));
  assert.match(link, /^#f%3A/);
}));

test("a slash goes to the search of the part that is read", () => open(drill, async page => {
  await page.keyboard.press("/");
  assert.equal(await page.evaluate(() => document.activeElement.form?.dataset.part), "findings");
  await page.keyboard.type("/");
  assert.equal(await page.evaluate(() => document.activeElement.value), "/");
}));

test("the keyboard comes to all parts in their order", () => open(drill, async page => {
  const order = [];
  for (let step = 0; step < 8; ++step) {
    await page.keyboard.press("Tab");
    order.push(await page.evaluate(() => document.activeElement.getAttribute("href") ?? document.activeElement.type));
  }
  assert.deepEqual(order, ["#findings", "#findings", "#map", "#excluded", "#keys", "#files", "search", "select-one"]);
}));

test("without script all of it can be read", () => open(drill, async page => {
  const client = await page.createCDPSession();
  const text = (await client.send("Runtime.evaluate", { expression: "document.body.textContent" })).result.value;
  for (const part of ["Findings", "Map", "Keys", "MP208", "Working safely", "product", "excluded"]) {
    assert.ok(text.includes(part), part);
  }
  const forms = await client.send("Runtime.evaluate", { expression: "[...document.forms].every(form => form.hidden)" });
  assert.equal(forms.result.value, true);
  const lists = await client.send("Runtime.evaluate", { expression: "document.querySelectorAll('.files dl.in').length" });
  assert.ok(lists.result.value > 3);
}, { isScripted: false }));

test("what names and titles hold is text", () => open(guide, async page => {
  assert.equal(await page.evaluate(() => document.scripts.length), 1);
  assert.equal(await page.$("img"), null);
  assert.equal(await page.$eval("h1", heading => heading.textContent), "</script><script>alert(1)</script>");
  const hostile = await page.$$eval(".tree a", links => links.filter(link => link.textContent.includes("Hostile")).map(link => link.hash));
  assert.equal(hostile.length, 1);
  await page.goto(page.url().split("#")[0] + hostile[0]);
  await page.waitForSelector(".files details[open] svg");
}));

for (const scheme of ["light", "dark"]) {
  for (const [name, viewport] of [["wide", wide], ["narrow", narrow]]) {
    test(`axe finds nothing, ${scheme} and ${name}`, () => open(drill, async page => {
      await page.evaluate(() => { location.hash = "#f:safety"; });
      await page.waitForSelector("#f\\:safety[open] svg");
      await page.evaluate(() => document.querySelectorAll("details").forEach(details => { details.open = true; }));
      const client = await page.createCDPSession();
      await client.send("Runtime.evaluate", { expression: axe });
      const found = await page.evaluate(() => axe.run(document));
      const told = found.violations.map(({ id, nodes }) => `${id}: ${nodes.slice(0, 3).map(node => node.html.slice(0, 200)).join(" | ")}`);
      assert.deepEqual(told, []);
      assert.ok(found.passes.some(({ id }) => id === "color-contrast"));
      const overflow = await page.evaluate(() => document.documentElement.scrollWidth - innerWidth);
      assert.ok(overflow <= 0, `${overflow} pixels too wide`);
      if (process.env.SCREENSHOTS) {
        await page.screenshot({ path: join(process.env.SCREENSHOTS, `${scheme}-${name}.png`), fullPage: true });
      }
    }, { viewport, scheme }));
  }
}
