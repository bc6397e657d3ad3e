"""What the measured openings say: statistics, tables, targets and a picture."""

import statistics

from opening import STEPS

TARGETS = [
    # what is measured, mode, its peer, the most that the ratio may be at each line
    ("editable", "e", "c", {"40 ms": 0.8, "150 ms": 0.5}),
    ("editable", "e", "a", {"40 ms": 0.2, "150 ms": 0.2}),
    ("visible", "g", "c", {"40 ms": 0.5, "150 ms": 0.5}),
    ("editable", "h", "e", {"40 ms": 0.5, "150 ms": 0.5}),
]
MOST_SPREAD = 1.5


def percentile(values, fraction):
    """By linear interpolation between the two nearest."""
    ordered = sorted(values)
    place = fraction * (len(ordered) - 1)
    low = int(place)
    high = min(low + 1, len(ordered) - 1)
    return ordered[low] + (ordered[high] - ordered[low]) * (place - low)


def summary(openings):
    """p50 and p95 of the two times, and the medians of all steps."""
    result = {"opens": len(openings)}
    for what in ("visible", "editable"):
        values = [each["steps"][what] for each in openings]
        result[what] = {"p50": percentile(values, 0.5), "p95": percentile(values, 0.95)}
    result["steps"] = {step: statistics.median(each["steps"][step] for each in openings) for step in STEPS}
    return result


def mode_table(line, modes):
    lines = ["| %s | opens | visible p50 | p95 | editable p50 | p95 | editable, of (a) | of (c) |" % line, "|---|---|---|---|---|---|---|---|"]
    for letter, mode in modes.items():
        if "problem" in mode:
            lines.append("| (%s) %s | not measured: %s | | | | | | |" % (letter, mode["label"], mode["problem"]))
            continue
        ratios = [ratio(modes, "editable", letter, peer) for peer in "ac"]
        opens = "%d" % mode["opens"] + (", %d not in this mode" % len(mode["misses"]) if mode["misses"] else "")
        lines.append("| (%s) %s | %s | %.0f | %.0f | %.0f | %.0f | %s |" % (
            letter, mode["label"], opens, mode["visible"]["p50"], mode["visible"]["p95"],
            mode["editable"]["p50"], mode["editable"]["p95"], " | ".join("%.2f" % r if r else "" for r in ratios)))
    return "\n".join(lines)


def ratio(modes, what, letter, peer):
    if any(what not in modes.get(each, {}) for each in (letter, peer)):
        return None
    return modes[letter][what]["p50"] / modes[peer][what]["p50"]


def step_text(milliseconds):
    return "%.0f" % milliseconds if milliseconds >= 0 else "before"


def step_table(line, modes):
    """Where the time goes: medians, since the notify."""
    measured = {letter: mode for letter, mode in modes.items() if "steps" in mode}
    lines = ["| %s: milliseconds since the notify until … | %s |" % (line, " | ".join("(%s)" % each for each in measured)),
             "|---|" + "---|" * len(measured)]
    for step, text in STEPS.items():
        lines.append("| %s | %s |" % (text, " | ".join(step_text(mode["steps"][step]) for mode in measured.values())))
    return "\n".join(lines)


def target_rows(results):
    """(text, measured or None, limit)"""
    rows = []
    for what, letter, peer, limits in TARGETS:
        for line, limit in limits.items():
            if line in results:
                text = "%s of (%s) at most %.2g × of (%s), at %s" % (what, letter, limit, peer, line)
                rows.append((text, ratio(results[line], what, letter, peer), limit))
    for line, modes in results.items():
        if "editable" in modes.get("e", {}):
            times = modes["e"]["editable"]
            rows.append(("p95 of (e) at most %.1f × its p50, at %s" % (MOST_SPREAD, line), times["p95"] / times["p50"], MOST_SPREAD))
    return rows


def target_table(rows):
    lines = ["| Wanted | measured | |", "|---|---|---|"]
    for text, measured, limit in rows:
        verdict = "" if measured is None else "met" if measured <= limit else "**missed**"
        lines.append("| %s | %s | %s |" % (text, "not measured" if measured is None else "%.2f" % measured, verdict))
    return "\n".join(lines)


def fetch_table(fetches):
    lines = ["| Fetched by the page | bytes | from the add-on, median ms | nginx, median ms | ratio |", "|---|---|---|---|---|"]
    names = {"reply": "a prefetched reply", "script": "a front-end script"}
    for name, times in fetches.items():
        local, peer = statistics.median(times["local"]), statistics.median(times["nginx"])
        lines.append("| %s | %d | %.2f | %.2f | %.2f |" % (names[name], times["bytes"], local, peer, local / peer))
    return "\n".join(lines)


def memory_table(memory):
    lines = ["| Resident memory (%s) | after 10 openings, MB | after 50, MB | growth |" % memory["mode"], "|---|---|---|---|"]
    for name in ("shell", "with its browser processes"):
        before, after = memory["after10"][name], memory["after50"][name]
        lines.append("| %s | %.1f | %.1f | %+.1f %% |" % (name, before / 1e6, after / 1e6, (after / before - 1) * 100))
    return "\n".join(lines)


def code_cache_table(code_cache):
    lines = ["| The editor's script from V8's code cache | opening after the first, and on |", "|---|---|"]
    for letter, mode in code_cache.items():
        text = "not measured: " + mode["problem"] if "problem" in mode else ", ".join("yes" if each else "no" for each in mode["fromCache"])
        lines.append("| (%s) %s | %s |" % (letter, mode["label"], text))
    return "\n".join(lines)


def picture(results):
    """An SVG picture: for each line and mode a bar to the median, with a mark at p95, for both times."""
    colours = {"visible": "#8fb3ee", "editable": "#2f6fde"}
    width, left, bar, gap, top = 820, 330, 11, 10, 46
    rows, y = [], top
    for line, modes in results.items():
        measured = {letter: mode for letter, mode in modes.items() if "visible" in mode}
        longest = max((mode[what]["p95"] for mode in measured.values() for what in colours), default=1)
        scale = (width - left - 90) / longest
        rows.append('<text x="16" y="%d" font-weight="bold">%s</text>' % (y + 4, line))
        y += 18
        for letter, mode in measured.items():
            rows.append('<text x="%d" y="%d" text-anchor="end">(%s) %s</text>' % (left - 8, y + bar + 4, letter, mode["label"][:48]))
            for what, colour in colours.items():
                p50, p95 = mode[what]["p50"] * scale, mode[what]["p95"] * scale
                rows.append('<rect x="%d" y="%d" width="%.1f" height="%d" fill="%s"/>' % (left, y, p50, bar - 1, colour))
                rows.append('<path d="M%.1f %.1fH%.1f" stroke="#444"/>' % (left + p50, y + bar / 2, left + p95))
                rows.append('<text x="%.1f" y="%d" font-size="10">%.0f</text>' % (left + p95 + 5, y + bar - 2, mode[what]["p50"]))
                y += bar
            y += gap
        y += 14
    legend = ('<rect x="16" y="14" width="12" height="12" fill="%s"/><text x="34" y="24">text visible</text>'
              '<rect x="140" y="14" width="12" height="12" fill="%s"/><text x="158" y="24">editable; bars to the median, lines to p95, '
              'milliseconds since the notify</text>' % (colours["visible"], colours["editable"]))
    return ('<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d" viewBox="0 0 %d %d" font-family="sans-serif" font-size="12">'
            '<rect width="100%%" height="100%%" fill="#fff"/>%s%s</svg>\n' % (width, y, width, y, legend, "".join(rows)))
