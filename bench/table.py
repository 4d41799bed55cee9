"""The table: rows of figures under their headings, and which targets they hold."""

SIZES = {"tiny": "83 bytes", "medium": "20 kB", "large": "10 MB"}
KINDS = {"files": "files", "streams": "streams", "memory": "in memory", "query": "XPath query",
         "serialise": "Serialize"}
TRANSFORMS = ("files", "streams")  # in memory, the facade makes an engine for each call

# The most that the facade may add to the instructions of a warm transform, in percent.
MOST_ADDED = {"tiny": 1.0, "medium": 0.05}
# The most time that vexa-xslt may take, as a multiple of the engine's own program's.
MOST_START_UP = 1.2
MOST_TIME = 1.0


def number(value, digits=0):
    return f"{value:,.{digits}f}"


def signed(value, digits=0):
    text = f"{value:+,.{digits}f}"
    return text.replace("-", "−") if float(text.replace(",", "")) else number(0, digits)


def percent(value):
    return signed(value, 3 if abs(value) < 1 else 2) + " %"


class Section:
    """Rows of one shape. A target is the last cell; `held` says whether the row holds it, None where it has none."""

    def __init__(self, title, *headings):
        self.title = title
        self.headings = headings
        self.rows = []

    def add(self, *cells, target="", held=None):
        mark = "" if held is None else ("held" if held else "MISSED")
        self.rows.append(([str(cell) for cell in cells], target, held, mark))

    def text(self):
        lines = [list(self.headings)] + [row[0] for row in self.rows]
        has_targets = any(row[1] for row in self.rows)
        if has_targets:
            lines = [lines[0] + ["target", ""]] + [row[0] + [row[1], row[3]] for row in self.rows]
        widths = [max(len(line[i]) for line in lines) for i in range(len(lines[0]))]
        left = {0, len(widths) - 1} if has_targets else {0}
        output = [self.title]
        for line in lines:
            cells = [cell.ljust(width) if i in left else cell.rjust(width)
                     for i, (cell, width) in enumerate(zip(line, widths))]
            output.append(("  " + "  ".join(cells)).rstrip())
        return "\n".join(output) + "\n"


def added(bare, facade):
    return 100 * (facade - bare) / bare


def facade_section(counts, times):
    section = Section("The facade against the bare engine, one warm call", "", "bare, instr.", "facade, instr.", "added",
                      "share", "bare, alloc.", "facade", "added", "bare, µs", "facade, µs")
    for kind, title in KINDS.items():
        for size, length in SIZES.items():
            bare, facade = (counts[f"{who} {kind} {size}"] for who in ("bare", "facade"))
            if bare["size"] != facade["size"]:
                raise ValueError(f"{kind} {size}: the facade's result differs from the bare engine's")
            share = added(bare["instructions"], facade["instructions"])
            most = MOST_ADDED.get(size) if kind in TRANSFORMS else None
            section.add(f"{title}, {length}", number(bare["instructions"]), number(facade["instructions"]),
                        signed(facade["instructions"] - bare["instructions"]), percent(share),
                        number(bare["allocations"]), number(facade["allocations"]),
                        signed(facade["allocations"] - bare["allocations"]),
                        number(times[f"bare {kind} {size}"]["us"]), number(times[f"facade {kind} {size}"]["us"]),
                        target=f"≤ {most:g} %" if most else "", held=share <= most if most else None)
    return section


CALLS = 1000  # rows of the document in which a stylesheet calls


def functions_section(counts, times):
    section = Section("The library's functions, one call out of a stylesheet, against a function that does nothing", "",
                      "nothing, instr.", "ours, instr.", "nothing, alloc.", "ours, alloc.", "added", "ours, µs")
    none = counts["no-call"]
    for name in [name[len("vexa-"):] for name in counts if name.startswith("vexa-")]:
        def per_call(what, prefix, name=name):
            return (counts[prefix + name][what] - none[what]) / CALLS

        own, fixed = per_call("allocations", "vexa-"), per_call("allocations", "fixed-")
        microseconds = (times["vexa-" + name]["us"] - times["no-call"]["us"]) / CALLS
        section.add(name, number(per_call("instructions", "fixed-")), number(per_call("instructions", "vexa-")),
                    number(fixed, 1), number(own, 1), signed(own - fixed, 1), number(microseconds, 2),
                    target="≤ 1 added", held=own - fixed < 1.05)
    return section


CONVERSIONS = 1000  # in one work
LENGTHS = (100, 1100)


def conversions_section(counts):
    section = Section("The two conversions of strings, without a copy", "", "instr. a call", "instr. a character",
                      "allocations")
    for work, title in (("to-utf16", "I18NExternalBufferToUTF16"), ("to-external", "I18NUTF16ToExternalBuffer")):
        short, long = (counts[f"{work} {length}"] for length in LENGTHS)
        per_character = (long["instructions"] - short["instructions"]) / (LENGTHS[1] - LENGTHS[0]) / CONVERSIONS
        section.add(title, number(short["instructions"] / CONVERSIONS, 1), number(per_character, 3),
                    number(long["allocations"]), target="0 and 0",
                    held=abs(per_character) < 0.0005 and long["allocations"] == 0)
    return section


ENTRIES = 40


def replay_section(counts):
    section = Section("What each transform pays for what a transformer remembers", "", "bare, instr.", "facade, instr.",
                      "bare, alloc.", "facade, alloc.")

    def per_entry(who, entries, what):
        return (counts[f"{who}-replay {entries}"][what] - counts[f"{who}-replay none"][what]) / ENTRIES

    for entries, title in (("parameters", "a parameter"), ("functions", "a function of the host's")):
        section.add(title, *(number(per_entry(who, entries, "instructions")) for who in ("bare", "facade")),
                    *(number(per_entry(who, entries, "allocations"), 1) for who in ("bare", "facade")))
    without = counts["bare-without-functions"]

    def eight(work, what):
        return counts[work][what] - without[what]

    own, engine = eight("facade-replay none", "instructions"), eight("bare-installing", "instructions")
    section.add("the eight functions and nodeset (bare: the same)", number(engine), number(own),
                number(eight("bare-installing", "allocations")), number(eight("facade-replay none", "allocations")),
                target="≤ bare", held=own <= engine)
    return section


def chain_section(counts, times):
    section = Section("A chain in memory against the same chain through text, 20 kB", "", "text, instr.", "memory, instr.",
                      "ratio", "text, alloc.", "memory, alloc.", "text, µs", "memory, µs", "ratio")
    for steps in (1, 2, 4, 8):
        text, memory = (counts[f"{who} {steps}"] for who in ("text", "memory"))
        text_us, memory_us = (times[f"{who} {steps}"]["us"] for who in ("text", "memory"))
        section.add(f"{steps} step{'s' if steps > 1 else ''}", number(text["instructions"]),
                    number(memory["instructions"]), number(memory["instructions"] / text["instructions"], 2),
                    number(text["allocations"]), number(memory["allocations"]), number(text_us), number(memory_us),
                    number(memory_us / text_us, 2))
    return section


PROGRAMS = ("Xalan", "xsltproc", "vexa-xslt")


def process_sections(processes, instructions):
    clock = Section("Whole processes, milliseconds on the clock, and millions of instructions", "", *PROGRAMS, "of Xalan",
                    "of xsltproc", "Xalan, instr.", "vexa-xslt", "of Xalan")
    other = Section("Whole processes, milliseconds of processor time, and megabytes at most", "",
                    *(f"{name}, ms" for name in PROGRAMS), *(f"{name}, MB" for name in PROGRAMS))
    for index, (title, runs) in enumerate(processes.items()):
        milliseconds = [runs[name]["ms"] for name in PROGRAMS]
        counted = ["", "", ""]
        if title in instructions:
            engine, ours = (instructions[title][name] for name in ("Xalan", "vexa-xslt"))
            counted = [number(engine / 1e6, 1), number(ours / 1e6, 1), number(ours / engine, 3)]
        ratio = round(milliseconds[2] / milliseconds[0], 2)
        most = MOST_START_UP if index == 0 else MOST_TIME
        clock.add(title, *(number(value, 1) for value in milliseconds), number(ratio, 2),
                  number(milliseconds[2] / milliseconds[1], 2), *counted,
                  target=f"≤ {most:g} of Xalan’s time", held=ratio <= most)
        other.add(title, *(number(runs[name]["cpu"], 1) for name in PROGRAMS),
                  *(number(runs[name]["mb"], 1) for name in PROGRAMS))
    return [clock, other]


def batch_section(batches):
    section = Section("vexa-xslt batch over small sources: how many in a second, and megabytes at most", "", "one job",
                      "two jobs", "ratio", "two, --isolate", "a process each", "one, MB", "two, MB", "two, --isolate")
    for count, runs in batches.items():
        rates = {name: run["rate"] for name, run in runs.items()}
        section.add(f"{int(count):,} sources", number(rates["one"]), number(rates["two"]),
                    number(rates["two"] / rates["one"], 2), number(rates["isolated"]),
                    number(rates["each"]) if "each" in rates else "",
                    *(number(runs[name]["mb"], 1) for name in ("one", "two", "isolated")))
    return section


def kept_section(times, sizes):
    section = Section("Memory that a transform of files leaves until its transformer goes", "", "bare, at once",
                      "bare, kept", "facade", "beyond the smallest")
    smallest = times["facade files tiny"]["kept"]
    for size, length in {**SIZES, "elements": "1 MB, small elements"}.items():
        at_once, kept, facade = (times[f"{who} {size}"]["kept"] for who in ("bare at-once", "bare files", "facade files"))
        multiple = (facade - smallest) / sizes[size]
        section.add(length, *(number(value) for value in (at_once, kept, facade)),
                    f"{multiple:.1f} of the source" if size != "tiny" else "")
    return section


def lifecycle_section(counts, times):
    section = Section("Start and stop", "", "instructions", "allocations", "µs")
    for work, title in (("start-and-stop", "the engines, start and stop"),
                        ("further-start-and-stop", "a further start and its stop"),
                        ("facade", "a transformer, made and destroyed"),
                        ("bare", "an engine transformer, the same")):
        section.add(title, number(counts[work]["instructions"]), number(counts[work]["allocations"]),
                    number(times[work]["us"], 1))
    return section


def threads_section(times):
    section = Section("Threads, each with a transformer of its own: transforms of 20 kB in a second", "", "one thread",
                      "two threads", "ratio")
    one, two = times["one"]["rate"], times["two"]["rate"]
    section.add("streams", number(one), number(two), number(two / one, 2))
    return section


def hostile_section(hostile):
    section = Section("Hostile input: seconds of processor time and megabytes at most, one transform", "",
                      "engine’s tree, s", "parser’s tree, s", "engine’s, MB", "parser’s, MB")
    for title, runs in hostile.items():
        trees = [runs["engine"], runs["parser"]]
        section.add(title, *(number(tree["s"], 2) for tree in trees), *(number(tree["mb"], 0) for tree in trees))
    return section


def make_sections(figures):
    counts, times = figures["counts"], figures["times"]
    return [facade_section(counts["facade_cost"], times["facade_cost"]),
            functions_section(counts["function_cost"], times["function_cost"]),
            conversions_section(counts["function_cost"]), replay_section(counts["function_cost"]),
            chain_section(counts["chain_cost"], times["chain_cost"]),
            *process_sections(figures["processes"], figures["process_counts"]),
            batch_section(figures["batches"]), threads_section(times["thread_scaling"]), kept_section(times["facade_cost"], figures["sizes"]),
            lifecycle_section(counts["lifecycle_cost"], times["lifecycle_cost"]),
            hostile_section(figures["hostile"])]


def targets(sections):
    held = [row[2] for section in sections for row in section.rows if row[2] is not None]
    return f"{sum(held)} of {len(held)} targets held"


def table_text(sections, machine):
    return f"{machine}\n\n" + "\n".join(section.text() for section in sections) + f"\n{targets(sections)}\n"
