#!/usr/bin/env python3
# report.py FOLDER PLOT [DOCUMENT] - from the figures that run.sh has left in FOLDER to a table (printed, and put
# between the marks of DOCUMENT) and a plot of cost against size, both axes logarithmic.
import json
import math
import pathlib
import sys

# Of each query: what it is, what is expected of its cost when there are more cities, and when there are more towns in
# each. n entries, cities or towns of the country, c cities of a prefecture, t towns of a city, k answers.
UP_TO_A_MILLION = "1; n above a million towns"
QUERIES = {
    "search_code": ("`SearchPostCode7`, 7 digits", "log n", "log n"),
    "code_reused": ("`GetAddrFromPostCode7`, 7 digits, reused vector", "log n + k", "log n + k"),
    "code_block": ("`GetAdrFromZip`, 7 digits", "log n + k", "log n + k"),
    "old_code": ("`GetAddrFromPostCode5`", "at most 10,000 entries, k", "at most 10,000 entries, k"),
    "address_whole": ("`PstAdrGetZip`, whole address", "c", "t"),
    "address_bare": ("`PstAdrGetZip`, without prefecture", "1", "t"),
    "address_nothing": ("`PstAdrGetZip`, names nothing", UP_TO_A_MILLION, UP_TO_A_MILLION),
    "address_office": ("`PstAdrGetZip`, with organisation", "c + log n", "t + log n"),
    "address_latest": ("`GetLatestAddr`, superseded address", "c", "t"),
    "part_city": ("`GetAddrFromAddrPart`, beginning of a city's name", "as nothing, + k", "as nothing, + k"),
    "list_prefectures": ("`GetPref`", "1", "1"),
    "list_cities": ("`GetPref` and `GetCityFromNo`", "k", "k"),
    "list_towns": ("`GetPrefFromCity` and `GetTownFromNo`", "c + k", "k"),
    "refine_code": ("`MakeRefineTree`, 7 digits", "log n + k", "log n + k"),
    "refine_lead3": ("`MakeRefineTree`, 3 digits", "k log k", "k log k"),
    "open_first_answer": ("`PstAdrOpen`, `GetAdrFromZip`, `PstAdrClose`", "log n", "log n"),
    "first_nothing": ("`DivideAddr`, names nothing, a fresh object's first", "n", "n"),
    "dearest_nothing": ("the dearest of its first 16", "n", "n"),
}
MANY_ANSWERS = 3  # from here on the table tells how many there are
MEMORY = {
    "private_open": "private memory after `PstAdrOpen`",
    "private_asked": "private memory after 10,000 questions",
    "file_asked": "pages of the file in memory then",
}
KINDS = {"cities": "more cities", "towns": "more towns in each city"}
COLOURS = ("#1b6ca8", "#c0392b", "#1e8449", "#7d3c98", "#b9770e", "#117a65", "#6e2c00", "#34495e", "#d81b60")


class Figures:
    """What was measured with one dictionary: medians in nanoseconds, answers for each query, memory in KB."""

    def __init__(self, path):
        data = json.loads(path.read_text())
        self.context = data["context"]
        self.cost, self.answers, self.spread = {}, {}, {}
        for run in data["benchmarks"]:
            name = run["run_name"].split("/")[0]
            manual = "manual_time" in run["run_name"]
            time = run["real_time" if manual else "cpu_time"]
            aggregate = run.get("aggregate_name", "median")  # a single repetition has none
            if aggregate == "median":
                self.cost[name] = time
                self.answers[name] = run.get("answers", 0)
                if "first_ns" in run:
                    self.cost["first_nothing"], self.answers["first_nothing"] = run["first_ns"], 0
            elif aggregate == "cv":
                self.spread[name] = time
        self.memory = json.loads(path.with_suffix(".memory.json").read_text())


def read_figures(folder):
    figures = {kind: {} for kind in KINDS}
    for path in folder.glob("*-*.json"):
        kind, _, times = path.name[: -len(".json")].partition("-")
        if kind in KINDS and times.isdigit():
            figures[kind][int(times)] = Figures(path)
    if 1 not in figures["cities"] or len(figures["cities"]) < 2:
        sys.exit(f"report: {folder} has no figures of the country and of a larger one")
    for sizes in figures.values():
        sizes.setdefault(1, figures["cities"][1])
    return {kind: dict(sorted(sizes.items())) for kind, sizes in figures.items()}


def three_digits(number):
    digits = max(0, 2 - math.floor(math.log10(number))) if number > 0 else 0
    return f"{number:,.{digits}f}"


def duration(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3), ("ns", 1)):
        if nanoseconds >= size * 0.9995 or unit == "ns":
            return f"{three_digits(nanoseconds / size)} {unit}"


def round_duration(nanoseconds):
    number, unit = duration(nanoseconds).split()
    return f"{float(number):g} {unit}"


def cell(figures, name):
    if name not in figures.cost:
        return "-"
    text = duration(figures.cost[name])
    answers = figures.answers[name]
    return text if answers < MANY_ANSWERS else f"{text} ({three_digits(answers)})"


# The exponent of size that leads from the country to the largest dictionary: 0 costs the same, 1 costs as many times
# more.
def exponent(sizes, name):
    most = max(sizes)
    if most == 1 or name not in sizes[1].cost or name not in sizes[most].cost:
        return "-"
    return f"{math.log(sizes[most].cost[name] / sizes[1].cost[name]) / math.log(most):.2f}"


def table(figures):
    columns = [(kind, times) for kind, sizes in figures.items() for times in sizes if kind == "cities" or times > 1]
    heads = ["the country" if times == 1 else f"{times} x {kind}" for kind, times in columns]
    lines = ["| query | expected of cities | exponent | of towns | exponent | " + " | ".join(heads) + " |",
             "|---|---|--:|---|--:|" + "--:|" * len(columns)]
    for name, (text, of_cities, of_towns) in QUERIES.items():
        cells = [text, of_cities, exponent(figures["cities"], name), of_towns, exponent(figures["towns"], name)]
        cells += [cell(figures[kind][times], name) for kind, times in columns]
        lines.append("| " + " | ".join(cells) + " |")
    for name, text in MEMORY.items():
        cells = [text, "", "", "", ""] + [f"{figures[kind][times].memory[name]:,} KB" for kind, times in columns]
        lines.append("| " + " | ".join(cells) + " |")
    for name in ("bytes", "cities", "towns", "entries"):
        cells = [f"{name} of the dictionary", "", "", "", ""]
        cells += [f"{int(figures[kind][times].context[name]):,}" for kind, times in columns]
        lines.append("| " + " | ".join(cells) + " |")
    return "\n".join(lines)


# The larger spreads, so that nobody reads more out of the table than there is.
def remark(figures):
    spreads = [(spread, name, kind, times) for kind, sizes in figures.items() for times, of in sizes.items()
               for name, spread in of.spread.items() if kind == "cities" or times > 1]
    if not spreads:
        return "Each benchmark ran once."
    middle = sorted(spread for spread, *_ in spreads)[len(spreads) // 2]
    spread, name, kind, times = max(spreads)
    return (f"Spread of the repetitions: {100 * middle:.1f} % in the middle, at most {100 * spread:.0f} % "
            f"(`{name}`, {times} x {kind}).")


class Plot:
    """One panel: lines from size to cost, each with its name at its right end."""

    WIDTH, HEIGHT, LEFT, RIGHT, TOP, BOTTOM = 620, 640, 60, 150, 50, 50
    LABEL_STEP = 13

    def __init__(self, x, title, sizes):
        self.x, self.title, self.sizes = x, title, sizes
        costs = [cost for of in sizes.values() for cost in of.cost.values()]
        self.low, self.high = math.floor(math.log10(min(costs))), math.ceil(math.log10(max(costs)))

    def at(self, times, cost):
        width, height = self.WIDTH - self.LEFT - self.RIGHT, self.HEIGHT - self.TOP - self.BOTTOM
        right = math.log10(max(self.sizes))
        return (self.x + self.LEFT + width * math.log10(times) / right,
                self.TOP + height * (self.high - math.log10(cost)) / (self.high - self.low))

    def draw(self):
        yield f'<text x="{self.x + self.LEFT}" y="28" font-size="15">{self.title}</text>'
        last = max(self.sizes)
        for decade in range(self.low, self.high + 1):
            (left, y), (right, _) = self.at(1, 10**decade), self.at(last, 10**decade)
            yield f'<path d="M{left:.1f} {y:.1f}H{right:.1f}" stroke="#ddd"/>'
            yield f'<text x="{left - 6:.1f}" y="{y + 4:.1f}" text-anchor="end">{round_duration(10**decade)}</text>'
        for times in self.sizes:
            (x, bottom), (_, top) = self.at(times, 10**self.low), self.at(times, 10**self.high)
            yield f'<path d="M{x:.1f} {bottom:.1f}V{top:.1f}" stroke="#ddd"/>'
            yield f'<text x="{x:.1f}" y="{bottom + 18:.1f}" text-anchor="middle">{times} x</text>'
        names = [name for name in QUERIES if name in self.sizes[last].cost]
        names.sort(key=lambda name: self.at(last, self.sizes[last].cost[name])[1])
        label = 0
        for number, name in enumerate(names):
            points = [self.at(times, of.cost[name]) for times, of in self.sizes.items() if name in of.cost]
            colour = COLOURS[number % len(COLOURS)]
            path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
            yield f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="1.6"/>'
            yield from (f'<circle cx="{x:.1f}" cy="{y:.1f}" r="2.4" fill="{colour}"/>' for x, y in points)
            x, y = points[-1]
            label = max(label + self.LABEL_STEP, y + 4)
            yield f'<path d="M{x:.1f} {y:.1f}L{x + 18:.1f} {label - 4:.1f}" stroke="{colour}" stroke-width="0.7"/>'
            yield f'<text x="{x + 21:.1f}" y="{label:.1f}" fill="{colour}">{name}</text>'


def plot(figures):
    panels = [Plot(Plot.WIDTH * n, f"times the country by {KINDS[kind]}", sizes)
              for n, (kind, sizes) in enumerate(figures.items()) if len(sizes) > 1]
    width = Plot.WIDTH * len(panels)
    return "\n".join([f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{Plot.HEIGHT}" '
                      f'viewBox="0 0 {width} {Plot.HEIGHT}" font-family="sans-serif" font-size="11">',
                      f'<rect width="{width}" height="{Plot.HEIGHT}" fill="white"/>',
                      *(line for panel in panels for line in panel.draw()), "</svg>\n"])


def replace_figures(document, text):
    begin, end = "<!-- figures -->\n", "<!-- end of figures -->\n"
    old = document.read_text()
    if begin not in old or end not in old:
        sys.exit(f"report: {document} has no marks for the figures")
    document.write_text(old[: old.index(begin) + len(begin)] + "\n" + text + "\n\n" + old[old.index(end):])


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit("usage: report.py FOLDER PLOT [DOCUMENT]")
    figures = read_figures(pathlib.Path(sys.argv[1]))
    text = table(figures) + "\n\n" + remark(figures)
    print(text)
    pathlib.Path(sys.argv[2]).write_text(plot(figures))
    if len(sys.argv) == 4:
        replace_figures(pathlib.Path(sys.argv[3]), text)


main()
