"use strict";

const data = JSON.parse(document.getElementById("data").textContent);
const page = id => document.getElementById(id);

function element(tag, attributes, ...content) {
    const made = document.createElement(tag);
    for (const [key, value] of Object.entries(attributes)) {
        made.setAttribute(key, value);
    }
    made.append(...content);
    return made;
}

// ---- Numbers as text, the same in every locale

const count = number => String(number).replace(/\B(?=(\d{3})+$)/g, "\u202f");

function milliseconds(nanoseconds) {
    const value = nanoseconds / 1e6;
    if (value < 0.0005) {
        return value > 0 ? "<0.001" : "0";
    }
    return value >= 99.95 ? count(Math.round(value)) : value.toFixed(value >= 9.995 ? 1 : value >= 0.9995 ? 2 : 3);
}

const percent = share => `${(100 * share).toFixed(1)}%`;

/** A time whose digits after the point have a place of their own, so that columns are aligned. */
function timeCell(nanoseconds) {
    const [whole, fraction] = milliseconds(nanoseconds).split(".");
    return [whole, element("span", {class: "fraction"}, fraction ? `.${fraction}` : "")];
}

// ---- What the page is measured in

const UNITS = {
    time: {
        whole: data.transform,
        own: entry => entry.own,
        ofLine: ([, , own]) => own,
        text: number => `${milliseconds(number)} ms`,
        cell: timeCell,
        column: "Own, ms",
        noun: "time",
    },
    instructions: {
        whole: data.instructions,
        own: entry => entry.ownSteps,
        ofLine: ([, , , steps]) => steps,
        text: number => `${count(number)} instructions`,
        cell: number => [count(number)],
        column: "Instructions",
        noun: "instructions",
    },
};
let unit = UNITS.time;

const shareOf = number => unit.whole > 0 ? number / unit.whole : 0;

// ---- Header

function showHeader() {
    page("version").textContent = data.version;
    page("outcome").textContent = `The run failed: ${data.outcome}`;
    page("outcome").hidden = !data.outcome;
    const calls = data.routines.reduce((sum, routine) => sum + routine.calls, 0);
    for (const [term, figure, sign] of [
        ["Transform", milliseconds(data.transform), " ms"],
        ["Compile stylesheet", milliseconds(data.compile), " ms"],
        ["Parse source", milliseconds(data.parse), " ms"],
        ["Instructions executed", count(data.instructions), ""],
        ["Calls", count(calls), ""],
    ]) {
        page("figures").append(element("div", {}, element("dt", {}, term),
                                       element("dd", {}, figure, element("small", {}, sign))));
    }
}

// ---- Routines

/** Without its folder: long names would leave no room for others. */
const fileOf = module => data.modules[module].name.replace(/^.*\//, "");
const placeOf = ({module, line}) => module < 0 ? "" : fileOf(module) + (line > 0 ? `:${line}` : "");

/** A link to the line in the annotated source, where there is one. */
function placeLink(routine) {
    const text = placeOf(routine);
    return routine.module >= 0 && routine.line > 0 ?
        element("a", {href: `#L-${routine.module}-${routine.line}`, title: data.modules[routine.module].name}, text) :
        text;
}

// Lines of one module are sorted as numbers.
const placeKey = ({module, line}) => module < 0 ? "" : `${fileOf(module)}:${String(line).padStart(9, "0")}`;

const COLUMNS = [
    {id: "name", label: "Name", text: true, value: routine => routine.name},
    {id: "calls", label: "Calls", value: routine => routine.calls},
    {id: "own", label: "Own,\u00a0ms", value: routine => routine.own},
    {id: "total", label: "Total,\u00a0ms", value: routine => routine.total},
    {id: "share", label: "Own share", value: routine => unit.own(routine)},
    {id: "ownSteps", label: "Own instructions", value: routine => routine.ownSteps},
    {id: "totalSteps", label: "Total instructions", value: routine => routine.totalSteps},
    {id: "place", label: "Place", text: true, value: placeKey},
];

const rows = data.routines.map(routine => ({routine, share: element("td", {class: "share"})}));
const sorted = {column: COLUMNS.find(column => column.id === "own"), descending: true};

function makeTable() {
    page("columns").append(...COLUMNS.map(column => {
        const button = element("button", {type: "button"}, column.label);
        button.addEventListener("click", () => {
            sorted.descending = sorted.column === column ? !sorted.descending : !column.text;
            sorted.column = column;
            sortRows();
        });
        return element("th", {id: `by-${column.id}`, scope: "col", class: column.text ? "text" : ""}, button);
    }));
    for (const row of rows) {
        const {routine} = row;
        row.line = element("tr", {},
                           element("th", {scope: "row"}, routine.name),
                           element("td", {}, count(routine.calls)),
                           element("td", {}, ...timeCell(routine.own)),
                           element("td", {}, ...timeCell(routine.total)),
                           row.share,
                           element("td", {}, count(routine.ownSteps)),
                           element("td", {}, count(routine.totalSteps)),
                           element("td", {class: "text"}, placeLink(routine)));
    }
}

function sortRows() {
    const {column, descending} = sorted;
    const sign = descending ? -1 : 1;
    const order = [...rows].sort((one, other) => {
        const a = column.value(one.routine);
        const b = column.value(other.routine);
        return a < b ? -sign : a > b ? sign : 0;
    });
    page("rows").replaceChildren(...order.map(row => row.line));
    for (const each of COLUMNS) {
        const state = each !== column ? "none" : descending ? "descending" : "ascending";
        page(`by-${each.id}`).setAttribute("aria-sort", state);
    }
}

function measureRows() {
    for (const {routine, share} of rows) {
        const text = percent(shareOf(unit.own(routine)));
        share.textContent = text;
        share.style.setProperty("--share", text);
    }
    sortRows();
}

// ---- Search

/** Which routines the search matches: as a regular expression, or as text with all its signs. */
let isFound = () => false;

function search() {
    const wanted = page("search").value;
    const text = wanted.toLowerCase();
    let expression = null;
    try {
        expression = new RegExp(wanted, "i");
    } catch {
        // It is text only.
    }
    const found = data.routines.map(({name}) =>
        wanted !== "" && (name.toLowerCase().includes(text) || expression !== null && expression.test(name)));
    isFound = routine => found[routine] === true;
    rows.forEach((row, index) => row.line.classList.toggle("found", found[index]));
    showFound();
    drawFrames();
}

/** The share of all frames that match, those inside of another match left out. */
function showFound() {
    const inside = new Uint8Array(frameCount);
    let sum = 0;
    for (let frame = 1; frame < frameCount; ++frame) {
        const matches = isFound(entryOf(frame).routine);
        if (matches && !inside[parentOf[frame]]) {
            sum += total[frame];
        }
        inside[frame] = matches || inside[parentOf[frame]];
    }
    const routines = data.routines.filter((routine, index) => isFound(index)).length;
    page("found").textContent = page("search").value === "" ? "" :
        `${count(routines)} ${routines === 1 ? "routine" : "routines"}, ${percent(shareOf(sum))} of ${unit.noun}`;
}

// ---- Flame graph: frame 0 is the whole transform, frame N the entry N - 1 of the tree

const ROW_HEIGHT = 20;
const LEAST_WIDTH = 1; // pixels: narrower frames are not drawn

const flame = page("flame");
const canvas = flame.firstElementChild;
const frameCount = data.tree.length + 1;
const entryOf = frame => data.tree[frame - 1];
const parentOf = Int32Array.from({length: frameCount}, (_, frame) => frame === 0 ? 0 : entryOf(frame).parent + 1);
const depth = new Int32Array(frameCount);
for (let frame = 1; frame < frameCount; ++frame) {
    depth[frame] = depth[parentOf[frame]] + 1;
}
const total = new Float64Array(frameCount); // in the unit
const start = new Float64Array(frameCount);
let called = 0; // the sum of the frames that frame 0 calls
let zoomed = 0;
let current = 0;
let graphWidth = 0;
let levels = []; // the frames wide enough to be drawn, by depth

function nameOf(frame) {
    return frame === 0 ? "transform" : data.routines[entryOf(frame).routine].name;
}

/** Always the same warm colour for a name. */
function hueOf(name) {
    let hash = 0;
    for (const letter of name) {
        hash = Math.imul(hash ^ letter.codePointAt(0), 0x01000193) >>> 0;
        hash = (hash ^ hash >>> 15) >>> 0;
    }
    return 12 + hash % 38;
}
const hues = data.routines.map(routine => hueOf(routine.name));

function measureFrames() {
    total.fill(0);
    for (let frame = frameCount - 1; frame > 0; --frame) {
        total[frame] += unit.own(entryOf(frame));
        total[parentOf[frame]] += total[frame];
    }
    called = total[0];
    total[0] = Math.max(called, unit.whole);
    const next = new Float64Array(frameCount);
    for (let frame = 1; frame < frameCount; ++frame) {
        start[frame] = next[frame] = next[parentOf[frame]];
        next[parentOf[frame]] += total[frame];
    }
    if (total[zoomed] === 0) {
        zoomed = 0;
    }
}

/** The zoomed frame and those it was called from take the whole width. */
const left = frame => depth[frame] <= depth[zoomed] ? 0 : (start[frame] - start[zoomed]) / total[zoomed] * graphWidth;
const width = frame => depth[frame] <= depth[zoomed] ? graphWidth : total[frame] / total[zoomed] * graphWidth;

function layOutFrames() {
    graphWidth = canvas.clientWidth;
    levels = [];
    for (let frame = zoomed; frame > 0; frame = parentOf[frame]) {
        levels[depth[frame]] = [frame];
    }
    levels[0] = [0];
    const end = start[zoomed] + total[zoomed];
    for (let frame = 1; frame < frameCount; ++frame) {
        if (depth[frame] > depth[zoomed] && start[frame] >= start[zoomed] && start[frame] + total[frame] <= end &&
            width(frame) >= LEAST_WIDTH) {
            (levels[depth[frame]] ??= []).push(frame);
        }
    }
    while (!levels[depth[current]]?.includes(current)) {
        current = parentOf[current];
    }
    canvas.style.height = `${levels.length * ROW_HEIGHT}px`;
    page("reset").disabled = zoomed === 0;
    drawFrames();
    describe(current);
}

function makeFrame(frame) {
    const pixels = width(frame);
    const made = element("div", {id: `frame-${frame}`, role: "treeitem", "aria-level": depth[frame] + 1});
    made.style.cssText = `left:${left(frame).toFixed(2)}px;top:${depth[frame] * ROW_HEIGHT}px;` +
        `width:${Math.max(pixels - 1, 0.8).toFixed(2)}px`;
    if (frame === 0) {
        made.classList.add("all");
    } else {
        made.style.setProperty("--hue", hues[entryOf(frame).routine]);
        made.classList.toggle("found", isFound(entryOf(frame).routine));
        made.classList.toggle("around", depth[frame] < depth[zoomed]);
    }
    if (pixels > 20) {
        made.textContent = nameOf(frame);
    } else {
        made.classList.add("narrow");
        made.setAttribute("aria-label", nameOf(frame));
    }
    return made;
}

/** Draws the levels in sight, and some above and below. */
function drawFrames() {
    const first = Math.max(0, Math.floor(flame.scrollTop / ROW_HEIGHT) - 10);
    const drawn = document.createDocumentFragment();
    for (const frame of levels.slice(first, first + Math.ceil(flame.clientHeight / ROW_HEIGHT) + 20).flat()) {
        drawn.append(makeFrame(frame));
    }
    canvas.replaceChildren(drawn);
    markCurrent();
}

function markCurrent() {
    canvas.querySelector(".current")?.classList.remove("current");
    page(`frame-${current}`)?.classList.add("current");
    flame.setAttribute("aria-activedescendant", `frame-${current}`);
}

function describe(frame) {
    const own = frame === 0 ? total[0] - called : unit.own(entryOf(frame));
    const figure = (word, number) => element("span", {}, `${word} ${unit.text(number)} (${percent(shareOf(number))})`);
    const calls = frame === 0 ? 1 : entryOf(frame).calls;
    page("frame").replaceChildren(element("b", {}, nameOf(frame)),
                                  element("span", {}, `${count(calls)} ${calls === 1 ? "call" : "calls"}`),
                                  figure("own", own), figure("total", total[frame]),
                                  frame === 0 ? "" : placeLink(data.routines[entryOf(frame).routine]));
}

function moveTo(frame) {
    current = frame;
    const top = depth[frame] * ROW_HEIGHT;
    if (top < flame.scrollTop || top + ROW_HEIGHT > flame.scrollTop + flame.clientHeight) {
        flame.scrollTop = top - flame.clientHeight / 2;
        drawFrames();
    }
    markCurrent();
    describe(frame);
}

function zoomTo(frame) {
    zoomed = current = frame;
    layOutFrames();
    moveTo(frame);
}

const KEYS = {
    ArrowUp: () => moveTo(parentOf[current]),
    ArrowDown: () => {
        const children = (levels[depth[current] + 1] ?? []).filter(frame => parentOf[frame] === current);
        if (children.length > 0) {
            moveTo(children.reduce((widest, frame) => total[frame] > total[widest] ? frame : widest));
        }
    },
    ArrowLeft: () => moveAlong(-1),
    ArrowRight: () => moveAlong(1),
    Home: () => moveTo(0),
    Enter: () => zoomTo(current),
    " ": () => zoomTo(current),
};

/** To the next frame of the same level, which may have another parent. */
function moveAlong(step) {
    const level = levels[depth[current]];
    moveTo(level[level.indexOf(current) + step] ?? current);
}

function frameAt(target) {
    const found = target.closest("[role=treeitem]");
    return found ? Number(found.id.slice("frame-".length)) : null;
}

function makeFlame() {
    flame.addEventListener("keydown", event => {
        if (KEYS[event.key] && !event.ctrlKey && !event.altKey && !event.metaKey) {
            event.preventDefault();
            KEYS[event.key]();
        }
    });
    flame.addEventListener("click", event => {
        const frame = frameAt(event.target);
        if (frame !== null) {
            zoomTo(frame);
        }
    });
    flame.addEventListener("mouseover", event => describe(frameAt(event.target) ?? current));
    flame.addEventListener("mouseleave", () => describe(current));
    flame.addEventListener("scroll", () => requestAnimationFrame(drawFrames));
    page("reset").addEventListener("click", () => {
        zoomTo(0);
        flame.focus(); // the button is disabled now
    });
    document.addEventListener("keydown", event => {
        if (event.key === "Escape" && event.target !== page("search") && zoomed !== 0) {
            zoomTo(0);
        }
    });
    new ResizeObserver(() => {
        if (graphWidth !== canvas.clientWidth) {
            layOutFrames();
        }
    }).observe(flame);
}

// ---- Annotated source, one module at a time

const LINES_OF_BLOCK = 100;
let shown = -1; // the module
let costs = []; // of the shown module: [entry of its lines, cell]

/** Of the lines that hold instructions: how many there are, how many were executed, and their share as text. */
function coverageOf(module) {
    const all = data.lines[module].length;
    const executed = data.lines[module].filter(([, calls]) => calls > 0).length;
    return {all, executed, share: all > 0 ? ` (${percent(executed / all)})` : ""};
}

const SIGNS = {"&": "&amp;", "<": "&lt;", ">": "&gt;"};
const escaped = text => text.replace(/[&<>]/g, sign => SIGNS[sign]);

/** As HTML: one element after another takes three times as long for a large module. */
function lineHtml(module, number, text, entry) {
    const calls = entry?.[1];
    const missed = calls === 0;
    return `<div class="line${missed ? " missed" : ""}" role="row" id="L-${module}-${number}" tabindex="-1">` +
        `<span role="cell">${number}</span>` +
        `<span role="cell" class="number">${
            missed ? "<span class=hidden>never executed </span>✗ 0" : entry ? count(calls) : ""}</span>` +
        `<span role="cell"${calls > 0 ? " class=cost" : ""}></span>` +
        `<code role="cell">${escaped(text)}</code></div>`;
}

function showModule(module) {
    if (module === shown) {
        return;
    }
    shown = module;
    const source = data.modules[module].text;
    page("module").value = module;
    const {all, executed, share} = coverageOf(module);
    page("coverage").textContent = `${count(executed)} of ${count(all)} lines executed${share}` +
        (source === "" ? "; the source could not be read" : "");
    const text = source.replace(/(\r\n?|\n)$/, "").split(/\r\n?|\n/);
    const entries = new Map(data.lines[module].map(entry => [entry[0], entry]));
    const last = data.lines[module].reduce((most, [line]) => Math.max(most, line), text.length);
    let html = "";
    for (let number = 1; number <= last; ++number) {
        if (number % LINES_OF_BLOCK === 1) {
            html += `${number > 1 ? "</div>" : ""}<div class="block" role="presentation">`;
        }
        html += lineHtml(module, number, text[number - 1] ?? "", entries.get(number));
    }
    page("lines").innerHTML = `${html}</div>`;
    costs = data.lines[module].filter(([, calls]) => calls > 0)
        .map(entry => [entry, page(`L-${module}-${entry[0]}`).querySelector(".cost")]);
    measureLines();
}

/** Shades by the square root, so that small differences are seen too; all modules by the same scale. */
function measureLines() {
    let most = 1;
    for (const entry of data.lines.flat()) {
        most = Math.max(most, unit.ofLine(entry));
    }
    page("cost").textContent = unit.column;
    for (const [entry, cell] of costs) {
        const number = unit.ofLine(entry);
        cell.replaceChildren(...unit.cell(number));
        cell.style.setProperty("--shade", (0.8 * Math.sqrt(number / most)).toFixed(3));
    }
}

/** Shows the module of an address such as #L-0-12, for the browser to find the line. */
function openLine(address) {
    const [, module] = /^#L-(\d+)-\d+$/.exec(address) ?? [];
    if (module in data.modules) {
        showModule(Number(module));
    }
}

/** For an address that the browser looked for before its module was shown: lets it look again. */
function openAddress() {
    openLine(location.hash);
    if (location.hash !== "") {
        location.replace(location.hash);
    }
}

function makeSource() {
    page("module").append(...data.modules.map(({name}, module) =>
        element("option", {value: module}, name + coverageOf(module).share)));
    page("module").addEventListener("change", event => showModule(Number(event.target.value)));
    document.addEventListener("click", event => openLine(event.target.closest("a")?.hash ?? ""));
    addEventListener("hashchange", openAddress);
    openAddress();
    if (shown < 0 && data.modules.length > 0) {
        showModule(0);
    }
}

// ---- All of it

function measure() {
    measureRows();
    measureFrames();
    layOutFrames();
    showFound();
    measureLines();
}

showHeader();
makeTable();
makeFlame();
page("search").addEventListener("input", search);
page("unit").addEventListener("change", event => {
    unit = UNITS[event.target.value];
    measure();
});
measure();
// A large module takes a while: the table and the graph are painted before.
requestAnimationFrame(() => setTimeout(makeSource));
