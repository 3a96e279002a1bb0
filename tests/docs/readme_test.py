"""Runs every command of README and docs and compares the output and the program that they show with what they are.

Usage: readme_test.py SOURCE_FOLDER ESTTFORM EXAMPLE_PROGRAM...
In the environment ESTTFORM_PYTHON names the interpreter that the Python module is built for; without it Python is left out.
"""
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

source, esttform, *examples = (pathlib.Path(arg).resolve() for arg in sys.argv[1:])
all_pages = ["README.md", *sorted(f"docs/{path.name}" for path in (source / "docs").glob("*.md"))]
pages = [page for page in all_pages if page != "docs/benchmarks.md" or (esttform.parent / "opencv_bench").is_file()]
readme = (source / "README.md").read_text()
failures = []
outputs = {}
shown = []
python = os.environ.get("ESTTFORM_PYTHON", "")
if not python:
    pages = [page for page in pages if page not in ("docs/python.md", "docs/clusters.md")]
else:
    os.environ["PATH"] = f"{pathlib.Path(python).parent}:{os.environ['PATH']}"


def run_commands(folder, environment, text):
    """Runs the lines of a block of commands; what is neither esttform nor a tool must be a file of the sources."""
    for line in text.splitlines():
        program = next(word for word in shlex.split(line) if "=" not in word)
        if program == "python3" and not python:
            continue
        if program in ("cmake", "gcc", "g++", "head", "printf", "cat", "python3") or (pathlib.Path(folder) / program).is_file():
            run = subprocess.run(["bash", "-c", line], cwd=folder, env=environment, capture_output=True, text=True)
            if "built without OpenCV" in run.stderr:
                continue
            outputs[line] = run.stdout
            if run.returncode != 0:
                failures.append(f"{line}: exit code {run.returncode}: {run.stderr}")
        elif not (source / program).is_file():
            failures.append(f"{line}: no such file")


# Runs the blocks of a page in one process, as a reader would, and gives what each prints.
RUN_BLOCKS = """
import contextlib, io, json, sys
names, printed = {"__name__": "__main__"}, []
for block in json.load(sys.stdin):
    with contextlib.redirect_stdout(io.StringIO()) as output:
        exec(block, names)
    printed.append(output.getvalue())
print(json.dumps(printed))
"""


def run_python(folder, environment, page, blocks):
    run = subprocess.run([python, "-B", "-c", RUN_BLOCKS], input=json.dumps(blocks), cwd=folder, env=environment,
                         capture_output=True, text=True)
    if run.returncode != 0:
        failures.append(f"{page}: the Python programs fail: {run.stderr}")
        return
    outputs.update((f"{page}: {block}", output) for block, output in zip(blocks, json.loads(run.stdout)))


for page in pages:
    blocks = re.findall(r"```(\w*)\n(.*?)```", (source / page).read_text(), re.S)
    languages = ["", *(language for language, _ in blocks)]
    shown += [text for (language, text), before in zip(blocks, languages) if language == "" and (python or before != "python")]
    with tempfile.TemporaryDirectory() as folder:
        # The commands run in a copy of the folders that they name, so that nothing is left in the sources.
        (pathlib.Path(folder) / "examples").symlink_to(source / "examples")
        (pathlib.Path(folder) / "demo_output").mkdir()
        (pathlib.Path(folder) / "build").mkdir()
        for preset in "release", "bench":
            (pathlib.Path(folder) / "build" / preset).symlink_to(esttform.parents[1])
        # The font library keeps its configuration until the end, which leak checkers take for lost.
        leaks = pathlib.Path(folder) / "leaks"
        leaks.write_text("leak:libfontconfig\n")
        environment = {**os.environ, "PYTHONPATH": str(esttform.parents[1] / "python"),
                       "LSAN_OPTIONS": f"suppressions={leaks}:print_suppressions=0",
                       "BENCHMARK_FILTER": "fixed/.*/RANSAC/80"}  # one row of many: the others take minutes
        for language, text in blocks:
            if language == "toml":                       # the first line names the file, for the commands that follow
                (pathlib.Path(folder) / text.splitlines()[0].lstrip("# ")).write_text(text)
            if language == "sh":
                run_commands(folder, environment, text)
        programs = [text for language, text in blocks if language == "python"]
        if programs and python:
            run_python(folder, environment, page, programs)

for example in examples:
    outputs[str(example)] = subprocess.run([str(example)], capture_output=True, text=True).stdout
shift_output = next(output for path, output in outputs.items() if path.endswith("shift_example")).strip()
if f"prints `{shift_output}`" not in readme:
    failures.append(f"examples/shift.cpp prints {shift_output!r}, the README says otherwise")

for text in shown:
    if text not in outputs.values():
        failures.append(f"a result that is shown is none of the results:\n{text}")

lines = {line.split()[0].rsplit("/", 1)[-1]: output for line, output in outputs.items() if "arches_panorama_500.csv" in line}
if lines.get("esttform_main") != lines.get("esttform", "no estimate"):
    failures.append("the generated program prints something else than the engine")

listed = subprocess.run([str(esttform), "params"], capture_output=True, text=True).stdout
for index, default in re.findall(r"^ *(\d+)  .*default ([^;]+);", listed, re.M):
    row = next((line for line in (source / "docs/block.md").read_text().splitlines() if line.startswith(f"| {index} ")), "")
    if f"| {default} |" not in row:
        failures.append(f"docs/block.md: parameter {index} has the default {default}")

programs = [(source / "examples" / path.name.replace("_example", ".cpp")).read_text() for path in examples]
for page in pages:
    for language, text in re.findall(r"```(\w*)\n(.*?)```", (source / page).read_text(), re.S):
        if language == "cpp" and text not in programs:
            failures.append(f"{page}: the C++ program that is shown is no example")

for page in all_pages:
    for target in re.findall(r"\]\(([^)#:]+)\)", (source / page).read_text()):
        if not (source / page).parent.joinpath(target).exists():
            failures.append(f"{page}: link to {target}: no such file")

if len(outputs) < 12:
    failures.append(f"only {len(outputs)} commands were found")
print("\n".join(failures) or f"{len(outputs)} commands, program, results and links are as shown")
sys.exit(1 if failures else 0)
