"""What a soak tells at its end."""


def text(soak, seconds):
    lines = ["", "Soak with seed %d: %d rounds, %d actions in %.1f minutes, %d failures" % (
        soak.seed, soak.rounds, sum(soak.counts.values()), seconds / 60, len(soak.failures))]
    lines += ["  " + failure.splitlines()[0][:300] for failure in soak.failures]
    lines.append("Actions: " + ", ".join("%s %d" % each for each in sorted(soak.counts.items())))
    lines += ["Left out: " + each for each in sorted(soak.left_out)]
    lines.append("The window was held at most %d ms, %d times above 100 ms" % (soak.longest_hold * 1000, soak.holds))
    if soak.start_usage and soak.end_usage:
        lines += usage_table(soak.start_usage, soak.end_usage)
    return "\n".join(lines)


def usage_table(start, end):
    """Without pages, after the rounds that warmed up and at the end."""
    lines = ["", "%-38s %10s %18s %18s %14s" % ("Process", "number", "PSS, MiB", "RSS, MiB", "descriptors")]
    for name in sorted(set(start) | set(end)):
        before, after = start.get(name), end.get(name)
        lines.append("%-38s %10s %18s %18s %14s" % (
            name, pair(before, after, "processes", 1, "%d"), pair(before, after, "pss", 1024, "%.1f"),
            pair(before, after, "rss", 1024, "%.1f"), pair(before, after, "descriptors", 1, "%d")))
    return lines


def pair(before, after, field, unit, form):
    return " → ".join(form % (getattr(each, field) / unit) if each else "–" for each in (before, after))
