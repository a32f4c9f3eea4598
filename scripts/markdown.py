"""What Markdown means where it is hosted: which lines are code, and what headings are linked by."""

import re


def with_code(lines):
    """Each line, and whether it is part of a fenced block, its fences included."""
    inside = False
    for line in lines:
        fence = line.startswith("```")
        yield line, inside or fence
        if fence:
            inside = not inside


def heading(line):
    """The text of a heading; None for other lines."""
    match = re.fullmatch(r"#+ +(.*)", line)
    return match and match[1]


def label(text):
    """The part of a link behind the # that leads to a heading."""
    return re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", "-")


def links(line):
    """The targets of the links of a line, but those inside of code."""
    return re.findall(r"\]\(([^)\s]+)\)", re.sub(r"`[^`]*`", "", line))
