"""The picture of the main figures: readable on a phone, and the same file for the same figures."""

import matplotlib

matplotlib.use("svg")
import matplotlib.pyplot as plot

import table

INK, SOFT, OURS, OTHER, REFERENCE = "#1d232b", "#5b6673", "#0b5cad", "#c9ced4", "#b4530a"

plot.rcParams.update({"svg.fonttype": "none", "svg.hashsalt": "costs", "font.family": "DejaVu Sans", "font.size": 11.5,
                      "text.color": INK, "axes.labelcolor": SOFT, "xtick.color": SOFT, "ytick.color": INK,
                      "axes.edgecolor": OTHER, "axes.spines.top": False,
                      "axes.spines.right": False, "axes.spines.left": False, "ytick.major.size": 0,
                      "figure.facecolor": "white"})

# A smaller share is drawn as none, in percent.
LEAST_SHARE = 0.01


def under_title(axes, text):
    axes.annotate(text, (0, 1), xycoords=("figure fraction", "axes fraction"), xytext=(9, 6),
                  textcoords="offset points", color=SOFT, fontsize=10.5)


def title(axes, text):
    axes.annotate(text, (0, 1), xycoords=("figure fraction", "axes fraction"), xytext=(9, 22),
                  textcoords="offset points", fontsize=12.5, fontweight="bold")


def draw_facade(axes, counts):
    """One dot for each kind of call and size of document, on a scale of powers of ten."""
    labels = []
    for kind, name in table.KINDS.items():
        for size, length in table.SIZES.items():
            position = len(labels)
            bare, facade = (counts[f"{who} {kind} {size}"]["instructions"] for who in ("bare", "facade"))
            share = table.added(bare, facade)
            shown = max(share, LEAST_SHARE)
            axes.plot([LEAST_SHARE, shown], [position, position], color=OTHER, linewidth=2.5, zorder=1)
            axes.plot(shown, position, "o", color=OURS, markersize=7)
            axes.annotate(f"{share:.2g} %" if share > LEAST_SHARE else "none", (shown, position), (8, -4),
                          textcoords="offset points", fontsize=10.5)
            labels.append(f"{name}, {length}" if size == "tiny" else length)
    axes.set_xscale("log")
    axes.set_xlim(LEAST_SHARE * 0.8, 700)
    axes.set_xticks([0.01, 0.1, 1, 10, 100], ["0.01 %", "0.1 %", "1 %", "10 %", "100 %"])
    axes.minorticks_off()
    axes.set_yticks(range(len(labels)), labels)
    axes.invert_yaxis()
    title(axes, "Instructions that the library adds")
    under_title(axes, "to those of the engine alone, in a warm call")


def draw_functions(axes, counts):
    """What the engine needs for any function, and what ours needs in addition."""
    none = counts["no-call"]["instructions"]
    names = [name[len("vexa-"):] for name in counts if name.startswith("vexa-")]
    for position, name in enumerate(names):
        fixed, own = ((counts[prefix + name]["instructions"] - none) / table.CALLS for prefix in ("fixed-", "vexa-"))
        axes.barh(position, fixed, color=OTHER, height=0.62)
        axes.barh(position, own - fixed, left=fixed, color=OURS, height=0.62)
        axes.annotate(f"{own:,.0f}", (own, position), (6, -4), textcoords="offset points", fontsize=10.5)
    axes.set_yticks(range(len(names)), names)
    axes.set_xlim(0, axes.get_xlim()[1] * 1.2)
    axes.xaxis.set_major_locator(plot.MaxNLocator(4))
    axes.xaxis.set_major_formatter(lambda value, _: f"{value:,.0f}")
    axes.invert_yaxis()
    title(axes, "Instructions of one function call")
    under_title(axes, "grey: any function; blue: what ours adds")


def draw_processes(axes, processes):
    """Elapsed time relative to Xalan, the engine's own program."""
    for position, runs in enumerate(processes.values()):
        for offset, name, colour in ((-0.2, "vexa-xslt", OURS), (0.2, "xsltproc", OTHER)):
            ratio = runs[name]["ms"] / runs["Xalan"]["ms"]
            axes.barh(position + offset, ratio, color=colour, height=0.38)
            axes.annotate(f"{ratio:.2f}", (ratio, position + offset), (6, -4), textcoords="offset points", fontsize=10.5,
                          bbox={"facecolor": "white", "edgecolor": "none", "pad": 1})
    axes.axvline(1, color=REFERENCE, linewidth=1.5, zorder=0.5)
    axes.set_yticks(range(len(processes)), processes)
    axes.set_xlim(0, axes.get_xlim()[1] * 1.15)
    axes.xaxis.set_major_locator(plot.MaxNLocator(5))
    axes.invert_yaxis()
    title(axes, "Time of whole processes, Xalan = 1")
    under_title(axes, "blue: vexa-xslt; grey: xsltproc")


def draw(figures, file):
    counts = figures["counts"]
    figure, axes = plot.subplots(3, 1, figsize=(5.7, 12.4), height_ratios=[15, 8.5, 13])
    draw_facade(axes[0], counts["facade_cost"])
    draw_functions(axes[1], counts["function_cost"])
    draw_processes(axes[2], figures["processes"])
    figure.subplots_adjust(left=0.445, right=0.985, top=0.955, bottom=0.03, hspace=0.27)
    figure.savefig(file, metadata={"Date": None, "Creator": None})
