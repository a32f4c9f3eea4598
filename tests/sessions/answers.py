"""What the shell answers: for the runners of sessions and of documents."""

import os
import pathlib
import re
import subprocess

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples"


def without_measurements(text):
    """Times and amounts of memory at the end of a line as #, in JSON, too."""
    text = re.sub(r"\d+\.\d+ (s|MiB)$", r"# \1", text, flags=re.M)
    return re.sub(r'("seconds": |"peak_bytes": )\d+(\.\d+)?(?=,?$)', r"\1#", text, flags=re.M)


def lines_of(text, mark=""):
    """The lines of what was written, `mark` in front of each."""
    text = text.decode(errors="backslashreplace")
    *lines, rest = [(mark + line).rstrip() if not line else mark + line for line in text.split("\n")]
    return lines if rest == mark.rstrip() else lines + [rest, mark + "(and no newline at the end)"]


def run(words, folder, path):
    """The shell runs `words` in the folder; the command is the one of that path."""
    environment = {**os.environ, "PATH": f"{path}:{os.environ['PATH']}", "EXAMPLES": str(EXAMPLES)}
    return subprocess.run(["sh", "-c", words], cwd=folder, stdin=subprocess.DEVNULL, capture_output=True,
                          timeout=300, env=environment, check=False)
