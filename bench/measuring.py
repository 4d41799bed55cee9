"""Runs the benchmark programs, and reads their output."""

import concurrent.futures
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys

import documents

DOCBOOK = documents.STYLESHEETS / "html" / "docbook.xsl"

# Other load does not change the counts, so one process for each processor counts at a time. A large document is
# counted in its own process: the counts depend on the state of the heap.
COUNTED = [("facade_cost", f"{who} {kind} large") for who in ("facade", "bare") for kind in ("files", "streams", "memory", "query", "serialise")] + [
    ("facade_cost", "medium"), ("facade_cost", "tiny"), ("chain_cost", ""), ("function_cost", ""),
    ("lifecycle_cost", ""), ("xslt_cost", "files"), ("xslt_cost", "compile"), ("xslt_cost", "parse"),
    ("xslt_cost", "exslt")]

# Seconds for each work, and the number of repetitions: the shortest time is taken.
TIMED = {"facade_cost": (0.05, 4), "chain_cost": (0.1, 4), "function_cost": (0.03, 3),
         "lifecycle_cost": (0.05, 3), "thread_scaling": (0.5, 3), "xslt_cost": (0.2, 3)}

# Source, stylesheet, number of repetitions, title in the table. All but the largest source are counted, too.
PROCESSES = [("empty.xml", "empty.xsl", 40, "an empty document"),
             ("orders.xml", "report.xsl", 15, "the sample report, 80 kB"),
             ("handbook.xml", DOCBOOK, 15, "DocBook to HTML, 6 kB"),
             ("rows-large.xml", "identity.xsl", 9, "copying by templates, 10 MB"),
             ("rows-sorted.xml", "sort.xsl", 15, "sorting by three keys, 2 MB"),
             ("rows-sorted.xml", "keys.xsl", 15, "looking up by keys, 2 MB"),
             ("rows-strings.xml", "strings.xsl", 15, "work on strings, 500 kB")]


class Failed(Exception):
    """A measurement failed."""


def progress(text):
    if sys.stderr.isatty():
        sys.stderr.write(f"\r\033[Kbench: {text}" if text else "\r\033[K")
        sys.stderr.flush()


def run(command, **options):
    done = subprocess.run([str(part) for part in command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, text=True, **options)
    if done.returncode:
        raise Failed(f"{' '.join(str(part) for part in command)}: {done.stderr.strip()[-500:]}")
    return done.stdout


def read_instructions(folder):
    """The instructions of each work, by name: callgrind writes one file for each work."""
    counts = {}
    for file in folder.iterdir():
        text = file.read_text(errors="replace")
        name = re.search(r"^desc: Trigger: Client Request: (.+)$", text, re.M)
        total = re.search(r"^totals: (\d+)$", text, re.M)
        if name and total:
            counts[name.group(1)] = int(total.group(1))
    return counts


def polling_lines():
    """The lines that ask whether an operation has to end, by the end of the file's name. None: all lines."""
    machine = (documents.PROJECT / "src" / "xslt" / "Machine.cpp").read_text().splitlines()
    return {"xslt/Operation.h": None,
            "xslt/Machine.cpp": {number for number, text in enumerate(machine, 1) if "operation()" in text}}


def is_polling():
    """Says of a place whether it belongs to polling."""
    lines_of = polling_lines()

    def says(path, _function, number):
        lines = next((of for end, of in lines_of.items() if path.endswith(end)), set())
        return lines is None or number in lines

    return says


def is_override(_path, function, _number):
    """Whether a function stands in for the engine's so that real stylesheets run."""
    return re.search(r"LiteralElement::|CallTemplateElement::|pushCurrentTemplate|(push|pop)CurrentStackFrameIndex"
                     r"|CopyTextNodesOnly|getInvoker", function) is not None


def read_share(folder, name, says):
    """The share of a work's instructions, in percent, that are spent in places of some kind."""
    file = next(file for file in folder.iterdir()
                if f"desc: Trigger: Client Request: {name}\n" in file.read_text(errors="replace"))
    files, functions, path, function, counted, total, number, is_call = {}, {}, "", "", 0, 0, 0, False
    for line in file.read_text(errors="replace").splitlines():
        place = re.match(r"(fl|fi|fe|cfi|cfl|fn|cfn)=\((\d+)\)(?: (.*))?$", line)
        cost = re.match(r"([+-]?)(\d+|\*) (\d+)$", line)
        if place:
            names = functions if place[1].endswith("fn") else files
            named = names.setdefault(place[2], place[3])
            if place[1] == "fn":
                function = named
            elif place[1][0] == "f":
                path = named
        elif line.startswith("calls="):
            is_call = True  # the next line has the cost of the callee
        elif cost:
            if cost[2] != "*":  # numbers are relative to the last one where they have a sign
                number = {"": 0, "+": number, "-": number}[cost[1]] + int(cost[1] + cost[2])
            if not is_call:
                total += int(cost[3])
                counted += int(cost[3]) if says(path, function, number) else 0
            is_call = False
    return 100 * counted / total


def count_part(build, program, part):
    """Instructions, allocations and result size of each call."""
    folder = build / "counts" / f"{program} {part}"
    folder.mkdir(parents=True, exist_ok=True)
    for old in folder.iterdir():
        old.unlink()
    output = run(["valgrind", "-q", "--tool=callgrind", "--collect-atstart=no", "--callgrind-out-file=counted",
                  build / "bin" / program, build / "documents", "--count", part], cwd=folder)
    instructions = read_instructions(folder)
    counts = {}
    for line in output.splitlines():
        work = json.loads(line)
        calls = work["calls"]
        counts[work["name"]] = {"instructions": instructions[work["name"]] / calls,
                                "allocations": work["allocations"] / calls, "size": work["size"]}
    return counts


def count_command(build, command, calls):
    """Instructions of a command, which are written to a file of that name."""
    run(["valgrind", "-q", "--tool=callgrind", f"--callgrind-out-file={calls}", *command], cwd=build / "documents")
    report = (build / "documents" / calls).read_text(errors="replace")
    return int(re.search(r"^totals: (\d+)$", report, re.M).group(1))


def count_process(build, source, stylesheet, name):
    """Instructions of a whole process."""
    result = f"counted-{source}-{pathlib.Path(stylesheet).name}-"
    return count_command(build, commands(build, source, stylesheet, result)[name], f"{result}{name}.calls")


def count_all(build):
    """The counts of the benchmark programs, and the instructions of whole processes."""
    counts, processes, done = {}, {}, 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        futures = {pool.submit(count_process, build, source, stylesheet, name): (title, name)
                   for source, stylesheet, _, title in PROCESSES for name in ("Xalan", "vexa-xslt")
                   if source != "rows-large.xml"}
        futures.update({pool.submit(count_part, build, program, part): program for program, part in COUNTED})
        for future in concurrent.futures.as_completed(futures):
            done += 1
            progress(f"counting instructions, {done} of {len(futures)}")
            what = futures[future]
            if isinstance(what, str):
                counts.setdefault(what, {}).update(future.result())
            else:
                processes.setdefault(what[0], {})[what[1]] = future.result()
    return counts, processes


def time_program(build, program):
    """For each work the shortest time in microseconds, the bytes kept by a call, and the most calls in a second."""
    seconds, repetitions = TIMED[program]
    report = json.loads(run([build / "bin" / program, build / "documents", f"--benchmark_min_time={seconds}",
                             f"--benchmark_repetitions={repetitions}", "--benchmark_format=json",
                             "--benchmark_enable_random_interleaving=true"]))
    times = {}
    for one in report["benchmarks"]:
        if one["run_type"] == "iteration":
            name = re.sub(r"/real_time.*", "", one["name"])
            times.setdefault(name, []).append(one)
    return {name: {"us": min(run["real_time"] for run in runs) / 1000,
                   "kept": min(run["kept"] for run in runs),
                   "rate": max(run["items_per_second"] for run in runs)} for name, runs in times.items()}


def time_all(build):
    times = {}
    for program in TIMED:
        progress(f"timing {program}")
        times[program] = time_program(build, program)
    return times


def commands(build, source, stylesheet, result="by-"):
    """The same transform by three programs, each with its own output file."""
    return {"Xalan": ["Xalan", "-o", result + "Xalan", source, stylesheet],
            "xsltproc": ["xsltproc", "-o", result + "xsltproc", stylesheet, source],
            "vexa-xslt": [build / "bin" / "vexa-xslt", "transform", stylesheet, source, "-o", result + "vexa-xslt"]}


def without_namespaces(path):
    """Xalan declares some namespaces that the stylesheet excludes."""
    return re.sub(rb' xmlns:[a-z]+="[^"]*"', b"", path.read_bytes())


def measure_processes(build):
    results = {}
    folder = build / "documents"
    for source, stylesheet, repetitions, title in PROCESSES:
        progress(f"whole processes, {title}")
        runs = {}
        candidates = list(commands(build, source, stylesheet).items())
        for turn in range(repetitions + 1):
            for name, command in candidates[turn % 3:] + candidates[:turn % 3]:
                words = run([build / "bin" / "measure_process", *command], cwd=folder).split()
                if turn > 0:  # the first turn fills the caches of the system
                    runs.setdefault(name, []).append([float(word) for word in words])
        if without_namespaces(folder / "by-Xalan") != without_namespaces(folder / "by-vexa-xslt"):
            raise Failed(f"{title}: Xalan and vexa-xslt give different results")
        if not (folder / "by-xsltproc").stat().st_size:
            raise Failed(f"{title}: xsltproc has no output")
        results[title] = {name: {"ms": min(run[0] for run in runs[name]) * 1000,
                                 "cpu": min(run[1] for run in runs[name]) * 1000,
                                 "mb": min(run[2] for run in runs[name]) * 1024 / 1e6} for name in runs}
    return results


def batch_commands(build, sources):
    """One stylesheet over many sources, in several ways."""
    program = build / "bin" / "vexa-xslt"
    names = f"{sources}.list"
    batch = [program, "batch", "table.xsl", "--files-from", names, "--quiet", "-d", f"{sources}-results"]
    each = f"while read -r source; do '{program}' transform table.xsl $source -o by-one; done <{sources}.list"
    return {"one": [*batch, "-j", 1], "two": [*batch, "-j", 2], "each": ["bash", "-c", each],
            "libxslt": [build / "bin" / "libxslt_batch", "table.xsl", names, f"{sources}-by-libxslt"]}


def docbook_commands(build, stylesheet, source, results):
    """DocBook by two programs, each into a folder of its own."""
    ours, others = (build / "documents" / f"{results}-by-{name}" for name in ("vexa-xslt", "xsltproc"))
    return {"vexa-xslt": (ours, [build / "bin" / "vexa-xslt", "transform", stylesheet, source, "-o", ours / "result"]),
            "xsltproc": (others, ["xsltproc", "--nonet", "-o", f"{others}/result", stylesheet, source])}


def measure_docbook(build):
    """The least milliseconds of processor time."""
    results = {}
    for title, (stylesheet, source) in documents.DOCBOOK.items():
        progress(f"DocBook, {title}")
        times, counts = {}, {}
        for _ in range(3):
            for name, (folder, command) in docbook_commands(build, stylesheet, source, title.replace(" ", "-")).items():
                shutil.rmtree(folder, ignore_errors=True)
                folder.mkdir()
                words = run([build / "bin" / "measure_process", *command], cwd=build / "documents").split()
                times[name] = min(float(words[1]) * 1000, times.get(name, float("inf")))
                counts[name] = sum(file.is_file() and file.stat().st_size > 0 for file in folder.rglob("*"))
        if len(set(counts.values())) != 1:
            raise Failed(f"DocBook, {title}: {counts}")
        results[title] = {**times, "files": counts["xsltproc"]}
    return results


def measure_batches(build):
    results = {}
    folder = build / "documents"
    for count in documents.BATCHES:
        progress(f"batches of {count:,} sources")
        sources = f"batch-{count}"
        runs = {}
        for _ in range(9 if count < 100 else 3):
            for name, command in batch_commands(build, sources).items():
                if name != "each" or count < 100:
                    for results_folder in folder.glob(f"{sources}-*"):
                        shutil.rmtree(results_folder, ignore_errors=True)
                    words = run([build / "bin" / "measure_process", *command], cwd=folder).split()
                    runs.setdefault(name, []).append((float(words[0]), float(words[2]) * 1024 / 1e6, float(words[1])))
                    if name != "each" and len(list(next(folder.glob(f"{sources}-*")).iterdir())) != count:
                        raise Failed(f"a batch of {count} sources has missing results: {name}")
        results[str(count)] = {name: {"rate": count / min(run[0] for run in timed), "mb": max(run[1] for run in timed),
                                      "cpu": min(run[2] for run in timed)}
                               for name, timed in runs.items()}
    return results


def measure_scale(build):
    """Documents that are larger than memory, requests, and sources that have their results."""
    folder, program = build / "documents", build / "bin" / "vexa-xslt"
    records = [program, "records", "table.xsl", "records.xml", "-e", "rows", "--quiet"]
    batch = [program, "batch", "table.xsl", "--files-from", "records.list", "--quiet"]
    worker = f"'{program}' worker table.xsl <{{}} >answers"
    work = {"one job": [*records, "-j", 1, "-o", "of-one-job"], "two jobs": [*records, "-j", 2, "-o", "of-two-jobs"],
            "xsltproc": ["xsltproc", "-o", "of-xsltproc", "empty.xsl", "records.xml"],
            "one worker": [*batch, "-j", 1, "-d", "of-one-worker"], "all workers": [*batch, "-d", "of-all-workers"],
            "newer": [*batch, "--newer", "-d", "of-all-workers"],
            "few requests": ["bash", "-c", worker.format("few-requests")],
            "requests": ["bash", "-c", worker.format("requests")]}
    for old in ("of-one-worker", "of-all-workers"):
        shutil.rmtree(folder / old, ignore_errors=True)
    results = {}
    for name, command in work.items():
        progress(f"large work, {name}")
        words = run([build / "bin" / "measure_process", *command], cwd=folder).split()
        results[name] = {"s": float(words[0]), "cpu": float(words[1]), "mb": float(words[2]) * 1024 / 1e6}
    run(["cmp", folder / "of-one-job", folder / "of-two-jobs"])
    if len(list((folder / "of-all-workers").iterdir())) != documents.SOURCES:
        raise Failed("a batch has missing results")
    answers = (folder / "answers").read_text()
    if answers.count('"result":') != documents.SOURCES:
        raise Failed(f"the worker has missing results: {answers[:200]}")
    for name in ("records.xml", "of-one-job", "of-two-jobs"):
        (folder / name).unlink()  # gigabytes
    return results


def measure_profile(build):
    """Instructions of a transform with and without a profile, and which part of the time is that of a template."""
    progress("a profile")
    files = ["report.xsl", "orders.xml", "-o", "/dev/null"]
    program, parts = build / "bin" / "vexa-xslt", []
    results = {name: count_command(build, [program, name, *files], f"{name}.calls")
               for name in ("transform", "profile")}
    for _ in range(9):
        table = subprocess.run([program, "profile", *files], cwd=build / "documents", stderr=subprocess.PIPE, text=True,
                               check=True).stderr
        parts.append(float(re.search(r" ([\d.]+) %.*  all of them$", table, re.M).group(1)))
    return {**results, "part": sorted(parts)[len(parts) // 2]}


def measure_hostile(build):
    """CPU seconds and megabytes of a transform that counts elements."""
    results = {}
    for title in documents.HOSTILE:
        progress(f"hostile input, {title}")
        command = [build / "bin" / "measure_process", build / "bin" / "vexa-xslt", "transform", "count.xsl",
                   documents.hostile_file(title)]
        words = run(command, cwd=build / "documents").split()
        results[title] = {"s": float(words[1]), "mb": float(words[2]) * 1024 / 1e6}
    return results


def measure_limits(build):
    """What `limits_cost` prints: by what was measured, then by the work."""
    progress("limits")
    results = {}
    for line in run([build / "bin" / "limits_cost"]).splitlines():
        one = json.loads(line)
        results.setdefault(one["what"], {})[one["work"]] = one["value"]
    return results


def versions():
    def first_line(command):
        return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              check=False).stdout.strip().splitlines()[0]

    package = run(["dpkg-query", "-W", "-f=${Version}", "xsltproc"])
    compiler = first_line(["g++", "-dumpfullversion"])
    engine = first_line(["Xalan"]).removeprefix("Xalan version ").rstrip(".")
    return (f"{os.uname().machine}, {os.cpu_count()} processors, g++ {compiler}, Xalan {engine}, "
            f"xsltproc {package.split('-')[0]}")
