"""Drives a page of `vexa-xslt profile --html` in a browser: profile_page_test.py PAGE

What is expected is calculated from the data inside of the page, so any page will do. Needs python3-selenium and
chromium-driver; runs without a network.
"""

import json
import pathlib
import re
import sys
import time

from selenium import webdriver
from selenium.common.exceptions import WebDriverException
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import Select, WebDriverWait

DATA = re.compile(r'<script type="application/json" id="data">(.*?)</script>', re.DOTALL)
UNITS = {"time": ("own", "transform"), "instructions": ("ownSteps", "instructions")}
LEAST_CONTRAST = 4.5  # of normal text, WCAG 2 level AA

CONTRAST = """
function parts(color) { return color.match(/[\\d.]+/g).map(Number); }
function background(element) {
    if (!element) return [255, 255, 255];
    const [r, g, b, alpha = 1] = parts(getComputedStyle(element).backgroundColor);
    if (alpha === 1) return [r, g, b];
    const below = background(element.parentElement);
    return [r, g, b].map((each, index) => alpha * each + (1 - alpha) * below[index]);
}
function luminance(color) {
    const linear = each => each <= .03928 ? each / 12.92 : ((each + .055) / 1.055) ** 2.4;
    const [r, g, b] = color.map(each => linear(each / 255));
    return .2126 * r + .7152 * g + .0722 * b;
}
return [...document.querySelectorAll(arguments[0])].filter(each => each.checkVisibility()).map(each => {
    const [one, other] = [parts(getComputedStyle(each).color).slice(0, 3), background(each)].map(luminance);
    return (Math.max(one, other) + .05) / (Math.min(one, other) + .05);
});
"""


def number(text):
    """Of a figure as the page shows it; less than the smallest one is between that and 0."""
    text = text.replace("\u202f", "").removesuffix("%").strip()
    return 0.0005 if text == "<0.001" else float(text)


def grouped(count):
    return f"{count:,}".replace(",", "\u202f")


def expect(condition, text):
    if not condition:
        raise AssertionError(text)


def expect_equal(found, expected, what):
    expect(found == expected, f"{what}: {found!r} instead of {expected!r}")


def expect_near(found, expected, tolerance, what):
    expect(abs(found - expected) <= tolerance, f"{what}: {found} instead of {expected}")


def expect_milliseconds(text, nanoseconds, what):
    expected = nanoseconds / 1e6
    expect_near(number(text), expected, max(0.00051, 0.0051 * expected), what)


class Profile:
    """The data of the page, and what follows from it."""

    def __init__(self, path):
        self.html = path.read_text(encoding="utf-8")
        self.__dict__.update(json.loads(DATA.search(self.html).group(1)))
        self.frames = [{"parent": None}] + [dict(entry, parent=entry["parent"] + 1) for entry in self.tree]

    def name(self, frame):
        return self.routines[self.frames[frame]["routine"]]["name"] if frame else "transform"

    def totals(self, unit):
        own, whole = UNITS[unit]
        totals = [0] + [frame[own] for frame in self.frames[1:]]
        for frame in range(len(totals) - 1, 0, -1):
            totals[self.frames[frame]["parent"]] += totals[frame]
        totals[0] = max(totals[0], getattr(self, whole))
        return totals

    def matched_share(self, unit, names):
        """Of the frames with such a name that are not inside of another one."""
        totals = self.totals(unit)
        inside, matched = [False], 0
        for frame in range(1, len(totals)):
            parent = self.frames[frame]["parent"]
            matches = self.name(frame) in names
            matched += totals[frame] if matches and not inside[parent] else 0
            inside.append(matches or inside[parent])
        return self.share(matched, unit)

    def share(self, part, unit):
        whole = getattr(self, UNITS[unit][1])
        return 100 * part / whole if whole else 0

    def place(self, routine):
        if routine["module"] < 0:
            return ""
        name = self.modules[routine["module"]]["name"]
        return name.rpartition("/")[2] + (f":{routine['line']}" if routine["line"] else "")


class Page:
    """The page in a browser, 1200 pixels wide unless told otherwise."""

    def __init__(self, path):
        self.profile = Profile(path)
        self.address = path.absolute().as_uri()
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        self.browser = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)

    def open(self, width=1200, scheme="light", fragment=""):
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=900, deviceScaleFactor=1,
                     mobile=width < 600)
        self.command("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])
        self.browser.get("about:blank")
        self.browser.get(self.address + fragment)
        # The source comes last; without JavaScript there is none.
        WebDriverWait(self.browser, 20).until(lambda _: self.all("#lines .line, noscript *"))

    def command(self, name, **arguments):
        self.browser.execute_cdp_cmd(name, arguments)

    def run(self, script, *arguments):
        return self.browser.execute_script(script, *arguments)

    def one(self, selector):
        return self.browser.find_element(By.CSS_SELECTOR, selector)

    def all(self, selector):
        return self.browser.find_elements(By.CSS_SELECTOR, selector)

    def texts(self, selector):
        return self.run("return [...document.querySelectorAll(arguments[0])].map(each => each.textContent)", selector)

    def columns(self):
        return self.run("return [...document.querySelectorAll('thead th')].map(each => each.id.slice('by-'.length))")

    def rows(self):
        """In the order of the page: dictionaries of texts by column."""
        cells = self.run("return [...document.querySelectorAll('tbody tr')].map(row => "
                         "[...row.cells].map(each => each.textContent))")
        columns = self.columns()
        return [dict(zip(columns, row)) for row in cells]

    def choose_unit(self, unit):
        self.run("arguments[0].scrollIntoView({block: 'center'})", self.one("#unit"))
        self.one(f"#unit input[value={unit}] + span").click()

    def search(self, text):
        field = self.one("#search")
        field.send_keys(Keys.CONTROL, "a")
        field.send_keys(Keys.DELETE, text)

    def drawn(self):
        """The frames in sight: {number: [left, width]}."""
        return {int(frame): place for frame, place in self.run(
            "const edge = document.querySelector('#flame > div').getBoundingClientRect().left;"
            "return [...document.querySelectorAll('#flame [role=treeitem]')].map(each => {"
            "const {left, width} = each.getBoundingClientRect();"
            "return [each.id.slice('frame-'.length), [left - edge, width]]; })")}

    def flame_width(self):
        return self.run("return document.querySelector('#flame > div').clientWidth")

    def current(self):
        return int(self.one("#flame").get_attribute("aria-activedescendant").removeprefix("frame-"))

    def is_in_sight(self, element):
        return self.run("const {left, top, bottom} = arguments[0].getBoundingClientRect();"
                        "return top >= 0 && bottom <= innerHeight && "
                        "arguments[0].contains(document.elementFromPoint(left + 20, (top + bottom) / 2))", element)


# ---- The checks: each on the page as it is opened


def header_shows_title_outcome_and_figures(page):
    profile = page.profile
    expect_equal(page.one("h1").text, " ".join(profile.title.split()), "title")
    expect(profile.title in page.browser.title, f"window title: {page.browser.title}")
    outcome = page.one("#outcome")
    expect_equal(outcome.is_displayed(), profile.outcome != "", "outcome displayed")
    if profile.outcome:
        expect(profile.outcome in outcome.text, f"outcome: {outcome.text}")
    figures = dict(zip(page.texts("#figures dt"), page.texts("#figures dd")))
    for term, value in (("Transform", profile.transform), ("Compile stylesheet", profile.compile),
                        ("Parse source", profile.parse)):
        expect_milliseconds(figures[term].removesuffix(" ms"), value, term)
    expect_equal(number(figures["Instructions executed"]), profile.instructions, "instructions")
    expect_equal(number(figures["Calls"]), sum(each["calls"] for each in profile.routines), "calls")


def table_holds_every_routine(page):
    profile = page.profile
    rows = page.rows()
    columns = ("name", "place", "calls", "ownSteps", "totalSteps")
    found = sorted((row["name"], row["place"], *(number(row[each]) for each in columns[2:])) for row in rows)
    expected = sorted((each["name"], profile.place(each), *(each[column] for column in columns[2:]))
                      for each in profile.routines)
    expect_equal(found, expected, "routines")
    by_own = sorted(profile.routines, key=lambda each: -each["own"])
    for row, routine in zip(rows, by_own):
        expect_milliseconds(row["own"], routine["own"], f"own time of row {row['name']}")
    for time_column in ("own", "total"):
        for text, value in zip(sorted(number(row[time_column]) for row in rows),
                               sorted(each[time_column] for each in profile.routines)):
            expect_milliseconds(str(text), value, f"{time_column} time")


def headers_sort_and_reverse(page):
    def place_key(text):
        name, line = re.fullmatch(r"(.*?)(?::(\d+))?", text).groups()
        return f"{name}:{int(line or 0):09}" if text else ""

    keys = {"name": str, "place": place_key}
    expect_equal(page.one("#by-own").get_attribute("aria-sort"), "descending", "aria-sort at first")
    for index, column in enumerate(page.columns()):
        button = page.one(f"#by-{column} button")
        if column == "own":
            page.one("#by-calls button").click()
        orders = []
        for _ in range(2):
            # Buttons work by mouse and by keyboard.
            button.send_keys(Keys.ENTER) if index % 2 else button.click()
            direction = page.one(f"#by-{column}").get_attribute("aria-sort")
            expect(direction in ("ascending", "descending"), f"{column}: aria-sort is {direction}")
            expect_equal(len(page.all("th[aria-sort$=ending]")), 1, f"{column}: sorted columns")
            values = [keys.get(column, number)(row[column]) for row in page.rows()]
            expect_equal(values, sorted(values, reverse=direction == "descending"), f"{column}, {direction}")
            orders.append((direction, values))
        expect(orders[0][0] != orders[1][0], f"{column}: the second click reverses")
        expect(len(set(orders[0][1])) < 2 or orders[0][1] != orders[1][1], f"{column}: the order changes")


def unit_decides_on_shares_frames_and_lines(page):
    profile = page.profile
    for unit in ("time", "instructions", "time"):
        page.choose_unit(unit)
        own = UNITS[unit][0]
        shares = sorted(number(row["share"]) for row in page.rows())
        for found, routine in zip(shares, sorted(profile.routines, key=lambda each: each[own])):
            expect_near(found, profile.share(routine[own], unit), 0.051, f"share of {routine['name']} in {unit}")
        totals, width = profile.totals(unit), page.flame_width()
        for frame, (_, found) in page.drawn().items():
            expected = totals[frame] / totals[0] * width if totals[0] else width
            expect_near(found, expected, 2, f"{unit}: width of frame {frame}")
        column = 3 if unit == "instructions" else 2
        lines = sorted(entry for entry in profile.lines[0] if entry[1] > 0)
        costs = page.texts("#lines .cost")
        expect_equal(len(costs), len(lines), "lines with a cost")
        for found, entry in zip(costs, lines):
            if unit == "time":
                expect_milliseconds(found, entry[column], f"time of line {entry[0]}")
            else:
                expect_equal(number(found), entry[column], f"instructions of line {entry[0]}")
    page.one("#unit input:checked").send_keys(Keys.ARROW_RIGHT)
    expect_equal(page.one("#unit input:checked").get_attribute("value"), "instructions", "unit chosen by keyboard")


def widths_of_frames_are_their_parts(page):
    """Each frame lies inside of its parent, and does not overlap the one before."""
    drawn = page.drawn()
    expect_equal(0 in drawn, True, "the whole transform is drawn")
    ends = {}
    for frame, (left, width) in sorted(drawn.items()):
        expect(width >= 0.5, f"frame {frame} is too narrow to be drawn: {width}")
        parent = page.profile.frames[frame]["parent"]
        if parent in drawn:
            inside = drawn[parent]
            expect(left >= inside[0] - 0.1 and left + width <= inside[0] + inside[1] + 1.1,
                   f"frame {frame} leaves its parent")
            expect(left >= ends.get(parent, 0) - 0.1, f"frame {frame} overlaps a sibling")
            ends[parent] = left + width


def expect_search(page, text, names):
    page.search(text)
    profile = page.profile
    marked = sorted(each["name"] for each in profile.routines if each["name"] in names)
    found = re.fullmatch(r"([\d\u202f]+) routines?, (.*%) of time", page.one("#found").text)
    expect(found is not None, f"result of search {text}: {page.one('#found').text}")
    expect_equal(number(found.group(1)), len(marked), f"routines that match {text}")
    expect_near(number(found.group(2)), profile.matched_share("time", names), 0.051, f"share of {text}")
    expect_equal(sorted(page.texts("tbody .found th")), marked, f"marked rows for {text}")
    expect_equal(len(page.all("tbody tr")), len(profile.routines), "rows stay")
    frames = page.run("return [...document.querySelectorAll('#flame .found')].map(each => each.id)")
    expect_equal(set(frames), {f"frame-{each}" for each in page.drawn() if each and profile.name(each) in names},
                 f"marked frames for {text}")


def search_marks_and_tells_the_share(page):
    names = {each["name"] for each in page.profile.routines}
    # Names that are the same as text and as a regular expression; one of a variable is text only.
    plain = [each for each in sorted(names) if re.fullmatch(r"\$?[^\\^$.|?*+()\[\]{}]+", each)]
    expect(plain, "no name to search for in this page")
    for name in plain[:5]:
        expect_search(page, name.upper(), {each for each in names if name.lower() in each.lower()})
    expression = re.compile("^(match|name)=.*[a-m]", re.IGNORECASE)
    expect_search(page, expression.pattern, {each for each in names if expression.search(each)})
    expect_search(page, "(", {each for each in names if "(" in each})
    expect_search(page, ".", names)
    page.search("")
    expect_equal(page.one("#found").text, "", "result without a search")
    expect_equal(page.all(".found"), [], "marks without a search")


def frame_to_zoom(page):
    """The narrowest of the wide frames two levels down or deeper: zooming changes it most."""
    width = page.flame_width()
    frames = [(place[1], frame) for frame, place in page.drawn().items() if frame > 1 and 5 < place[1] < 0.95 * width]
    return min(frames)[1] if frames else None


def expect_zoomed(page, frame):
    expect_near(page.drawn()[frame][1], page.flame_width(), 2, f"width of zoomed frame {frame}")
    expect_equal(page.one("#reset").is_enabled(), True, "Reset zoom is enabled")
    profile = page.profile
    totals = profile.totals("time")
    for each, (_, width) in page.drawn().items():
        if profile.frames[each]["parent"] == frame:
            expect_near(width, totals[each] / totals[frame] * page.flame_width(), 2, f"width of child {each}")
    shown = page.one("#frame").text
    expect(profile.name(frame) in shown, f"description of {frame}: {shown}")
    found = re.search(r"total [^(]* ms \((\S+)%\)", shown)
    expect(found is not None, f"description of {frame}: {shown}")
    expect_near(number(found.group(1)), profile.share(totals[frame], "time"), 0.051, f"share of frame {frame}")


def zoom_by_click_and_reset(page):
    before = page.drawn()
    frame = frame_to_zoom(page)
    expect(frame is not None, "no frame to zoom in this page")
    expect_equal(page.one("#reset").is_enabled(), False, "Reset zoom is enabled at first")
    started = time.monotonic()
    page.one(f"#frame-{frame}").click()
    expect_zoomed(page, frame)
    expect(time.monotonic() - started < 2, "zooming is slow")
    page.one("#reset").click()
    expect_equal(page.drawn(), before, "frames after a reset")
    expect_equal(page.one("#reset").is_enabled(), False, "Reset zoom is enabled after a reset")


def hover_describes_a_frame(page):
    frame = frame_to_zoom(page)
    page.run("document.getElementById('flame').scrollIntoView()")
    ActionChains(page.browser).move_to_element(page.one(f"#frame-{frame}")).perform()
    shown = page.one("#frame").text
    calls = grouped(page.profile.frames[frame]["calls"])
    expect(page.profile.name(frame) in shown and re.search(rf"^{calls} calls?$", shown, re.MULTILINE),
           f"description: {shown}")


def keys_move_and_zoom(page):
    profile = page.profile
    before = page.drawn()
    flame = page.one("#flame")
    flame.send_keys(Keys.HOME)
    expect_equal(page.current(), 0, "frame at first")
    path = [0]
    for _ in range(3):
        children = [each for each in page.drawn() if profile.frames[each]["parent"] == path[-1]]
        flame.send_keys(Keys.ARROW_DOWN)
        if children:
            expect(page.current() in children, f"Down from {path[-1]} goes to {page.current()}")
            expect(profile.name(page.current()) in page.one("#frame").text, "the description follows")
            path.append(page.current())
            for each in children:
                expect(page.drawn()[each][1] <= page.drawn()[page.current()][1] + 0.1, "Down goes to the widest child")
            siblings = sorted(children, key=lambda each: before[each][0])
            for key, step in ((Keys.ARROW_RIGHT, 1), (Keys.ARROW_LEFT, -1)):
                index = siblings.index(path[-1]) + step
                if 0 <= index < len(siblings):
                    flame.send_keys(key)
                    expect_equal(page.current(), siblings[index], f"sibling of {path[-1]}")
                    flame.send_keys(Keys.ARROW_LEFT if step > 0 else Keys.ARROW_RIGHT)
    expect(len(path) > 1, "no frame to move to in this page")
    flame.send_keys(Keys.ENTER)
    expect_zoomed(page, path[-1])
    flame.send_keys(Keys.ARROW_UP)
    expect_equal(page.current(), path[-2], "Up goes to the parent")
    flame.send_keys(Keys.ESCAPE)
    expect_equal(page.drawn(), before, "frames after Escape")


def deepest_frame_can_be_reached(page):
    totals = page.profile.totals("time")
    frame, depth = 0, 0
    flame = page.one("#flame")
    flame.send_keys(Keys.HOME)
    while True:
        flame.send_keys(Keys.ARROW_DOWN)
        if page.current() == frame:
            break
        frame, depth = page.current(), depth + 1
        if depth % 20 == 0:
            flame.send_keys(Keys.ENTER)  # a zoom makes narrow frames wide
    box, found = page.run("const flame = document.getElementById('flame').getBoundingClientRect();"
                          "const frame = document.querySelector('.current').getBoundingClientRect();"
                          "return [[flame.top, flame.bottom], [frame.top, frame.bottom]]")
    expect(box[0] <= found[0] and found[1] <= box[1],
           f"frame {frame}, {depth} levels down, is out of sight: {found} in {box}")
    expect(totals[frame] > 0, "a frame that costs nothing is drawn")


def modules_show_their_lines(page):
    profile = page.profile
    module_list = Select(page.one("#module"))
    expect_equal(len(module_list.options), len(profile.modules), "modules")
    for index, module in list(enumerate(profile.modules))[:6]:
        module_list.select_by_index(index)
        entries = {entry[0]: entry for entry in profile.lines[index]}
        executed = sum(entry[1] > 0 for entry in entries.values())
        text = f"{grouped(executed)} of {grouped(len(entries))} lines executed"
        expect(page.one("#coverage").text.startswith(text), f"coverage: {page.one('#coverage').text} instead of {text}")
        expect(module["name"] in module_list.first_selected_option.text, "name of the module")
        lines = page.run("return [...document.querySelectorAll('#lines .line')].map(line => [line.id, "
                         "line.classList.contains('missed'), ...[...line.children].map(cell => cell.textContent)])")
        source = re.split(r"\r\n?|\n", re.sub(r"(\r\n?|\n)\Z", "", module["text"]))
        expect_equal(len(lines), max([len(source), *entries]), f"lines of {module['name']}")
        for position, (name, missed, line, calls, _, code) in enumerate(lines, 1):
            expect_equal((name, line), (f"L-{index}-{position}", str(position)), "line")
            expect_equal(code, source[position - 1] if position <= len(source) else "", f"text of line {position}")
            counted = entries[position][1] if position in entries else None
            expected = "" if counted is None else grouped(counted) if counted else "never executed ✗ 0"
            expect_equal(calls, expected, f"calls of line {position}")
            expect_equal(missed, counted == 0, f"line {position} marked as never executed")
    for index, entries in enumerate(profile.lines):
        if 0 in (entry[1] for entry in entries) and any(entry[1] for entry in entries):
            module_list.select_by_index(index)
            colors = [page.run("return getComputedStyle(document.querySelector(arguments[0])).backgroundColor", each)
                      for each in (".line.missed", ".line:not(.missed):not(.head)")]
            expect(colors[0] != colors[1], "lines that were never executed have a colour")
            break


def places_jump_to_the_source(page):
    profile = page.profile
    last_of_module = {each["module"]: each for each in profile.routines if each["module"] >= 0 and each["line"] > 0}
    expect(last_of_module, "no routine has a place in this page")
    for index, routine in list(last_of_module.items())[:4] * 2:
        link = page.one(f"tbody a[href='#L-{index}-{routine['line']}']")
        page.run("arguments[0].scrollIntoView({block: 'center'})", link)
        expect_equal(link.text, profile.place(routine), "place")
        link.send_keys(Keys.ENTER) if index % 2 else link.click()
        expect_equal(page.one("#module").get_attribute("value"), str(index), "module after a jump")
        line = page.one(".line:target")
        expect_equal(line.get_attribute("id"), f"L-{index}-{routine['line']}", "line after a jump")
        expect(page.is_in_sight(line), f"{link.text} is out of sight")
    page.open(fragment=f"#L-{index}-{routine['line']}")
    expect(page.is_in_sight(page.one(f"#L-{index}-{routine['line']}:target")), "a line of the address is shown at once")
    if len(last_of_module) > 1:
        other, routine = next(iter(last_of_module.items()))
        page.run("location.hash = arguments[0]", f"#L-{other}-{routine['line']}")
        WebDriverWait(page.browser, 5).until(lambda _: page.all(f"#L-{other}-{routine['line']}:target"))
        expect(page.is_in_sight(page.one(f"#L-{other}-{routine['line']}:target")), "a changed address shows its line")


def all_controls_are_reached_by_tab(page):
    for selector in ("header", "nav", "main", "h1", "section h2"):
        expect(page.all(selector), f"no {selector}")
    expected = {"unit", "search", "flame", "module", *(f"by-{each}" for each in page.columns())}
    reached = set()
    for _ in range(len(page.profile.routines) + 40):
        page.browser.switch_to.active_element.send_keys(Keys.TAB)
        name, ring = page.run(
            "const focused = document.activeElement;"
            "const shown = focused.type === 'radio' ? focused.nextSibling : focused;"
            "return [(focused.closest('[id]') ?? focused).id, getComputedStyle(shown).outlineStyle]")
        expect(ring != "none", f"focus on {name} cannot be seen")
        reached.add(name)
        if name == "module":
            break
    expect(expected <= reached, f"not reached: {expected - reached}")
    expect_equal(page.run("return document.getAnimations().length"), 0, "moving parts")


def width_needs_no_scrolling(page):
    for width in (400, 1200):
        page.open(width)
        for index in range(min(3, len(page.profile.modules))):
            Select(page.one("#module")).select_by_index(index)
            found = page.run("return [document.documentElement.scrollWidth, innerWidth]")
            expect(found[0] <= found[1] == width, f"at {width} pixels: {found}")


def both_schemes_are_legible(page):
    colors = []
    for scheme in ("light", "dark"):
        page.open(scheme=scheme)
        if frame_to_zoom(page) is not None:
            page.one(f"#frame-{frame_to_zoom(page)}").click()
        for text in ("", "."):
            page.search(text)
            for selector in ("p, h1, h2, dt, dd, label span, a, output", "thead button", "td, tbody th",
                             "#flame [role=treeitem]", ".block:first-child .line > *, .head > *"):
                for contrast in page.run(CONTRAST, selector):
                    expect(contrast >= LEAST_CONTRAST, f"contrast {contrast:.2f} in {selector}, {scheme}")
        colors.append(page.run("return ['body', '#flame [role=treeitem]:last-child', '.toolbar'].map(each => "
                               "getComputedStyle(document.querySelector(each)).backgroundColor)"))
    for light, dark in zip(*colors):
        expect(light != dark, f"the same colour {light} in both schemes")


def page_is_self_contained(page):
    own = DATA.sub("", page.profile.html)
    expect("http" not in own.replace("http-equiv", ""), "an address outside of the page")
    expect_equal(page.run("return performance.getEntriesByType('resource').map(each => each.name)"), [], "requests")
    requests = [json.loads(entry["message"])["message"] for entry in page.browser.get_log("performance")]
    addresses = {each["params"]["request"]["url"] for each in requests if each["method"] == "Network.requestWillBeSent"}
    expect(addresses, "the browser reports no requests at all")
    outside = {each for each in addresses if not each.startswith((page.address, "data:", "about:"))}
    expect_equal(outside, set(), "requests")
    denied = page.browser.execute_async_script(
        "const done = arguments[0];"
        "document.addEventListener('securitypolicyviolation', event => done(event.blockedURI));"
        "setTimeout(() => done(''), 2000); new Image().src = 'https://localhost:9/picture.png';")
    expect("localhost" in denied, "the page's policy does not deny requests")
    page.browser.get_log("browser")  # the denial is an error there


def without_scripts_the_page_says_so(page):
    page.command("Emulation.setScriptExecutionDisabled", value=True)
    try:
        page.open()
        expect("needs JavaScript" in page.one("noscript").text, "no hint without JavaScript")
    finally:
        page.command("Emulation.setScriptExecutionDisabled", value=False)


CHECKS = [header_shows_title_outcome_and_figures, table_holds_every_routine, headers_sort_and_reverse,
          unit_decides_on_shares_frames_and_lines, widths_of_frames_are_their_parts, search_marks_and_tells_the_share,
          zoom_by_click_and_reset, hover_describes_a_frame, keys_move_and_zoom, deepest_frame_can_be_reached,
          modules_show_their_lines, places_jump_to_the_source, all_controls_are_reached_by_tab,
          width_needs_no_scrolling, both_schemes_are_legible, page_is_self_contained, without_scripts_the_page_says_so]


def main(path):
    page = Page(pathlib.Path(path))
    failed = 0
    try:
        for check in CHECKS:
            error = ""
            try:
                page.open()
                check(page)
                log = [entry["message"] for entry in page.browser.get_log("browser")]
                expect_equal(log, [], "messages on the console")
            except (AssertionError, WebDriverException) as failure:
                error = str(failure).strip().splitlines()[0]
            failed += error != ""
            name = check.__name__.replace("_", " ")
            print(f"FAILED: {name}: {error[:500]}" if error else f"ok: {name}", flush=True)
    finally:
        page.browser.quit()
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
