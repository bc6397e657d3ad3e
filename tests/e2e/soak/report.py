"""What a soak tells at its end."""


def text(soak, seconds):
    lines = ["", "Soak with seed %d: %d rounds, %d actions in %.1f minutes, %d failures" % (
        soak.seed, soak.rounds, sum(soak.counts.values()), seconds / 60, len(soak.failures))]
    lines += ["  " + failure.splitlines()[0][:300] for failure in soak.failures]
    lines.append("Actions: " + ", ".join("%s %d" % each for each in sorted(soak.counts.items())))
    lines += ["Left out: " + each for each in sorted(soak.left_out)]
    lines.append("The window was held at most %d ms, %d times above 100 ms" % (soak.longest_hold * 1000, soak.holds))
    if soak.longest_life:
        lines += usage_table(*soak.longest_life)
    return "\n".join(lines)


def usage_table(rounds, start, end):
    """Without pages, once a shell was warm and after so many rounds more."""
    form = "%-32s %10s %16s %16s %16s %14s"
    lines = ["", "A warm shell without pages, and the same %d rounds later" % rounds,
             form % ("Process", "number", "own, MiB", "PSS, MiB", "RSS, MiB", "descriptors")]
    for name in sorted(set(start) | set(end)):
        before, after = start.get(name), end.get(name)
        lines.append(form % (
            name, pair(before, after, "processes", 1, "%d"), pair(before, after, "own", 1024, "%.1f"),
            pair(before, after, "pss", 1024, "%.1f"),
            pair(before, after, "rss", 1024, "%.1f"), pair(before, after, "descriptors", 1, "%d")))
    return lines


def pair(before, after, field, unit, form):
    return " → ".join(form % (getattr(each, field) / unit) if each else "–" for each in (before, after))
