"""Runs every command of README and docs and compares the output and the program that they show with what they are.

Usage: readme_test.py SOURCE_FOLDER ESTTFORM SHIFT_EXAMPLE
"""
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

source, esttform, shift_example = (pathlib.Path(arg).resolve() for arg in sys.argv[1:4])
pages = ["README.md", "docs/generated-code.md", "docs/pictures.md", "docs/stabilise.md"]
readme = (source / "README.md").read_text()
failures = []
outputs = {}
shown = []


def run_commands(folder, environment, text):
    """Runs the lines of a block of commands; what is neither esttform nor a tool must be a file of the sources."""
    for line in text.splitlines():
        words = shlex.split(line)
        program = str(esttform) if words[0] == "build/release/bin/esttform" else words[0]
        is_tool = program in (str(esttform), "cmake", "gcc") or (pathlib.Path(folder) / program).is_file()
        if is_tool:
            run = subprocess.run([program, *words[1:]], cwd=folder, env=environment, capture_output=True, text=True)
            if "built without OpenCV" in run.stderr:
                continue
            outputs[line] = run.stdout
            if run.returncode != 0:
                failures.append(f"{line}: exit code {run.returncode}: {run.stderr}")
        elif not (source / words[0]).is_file():
            failures.append(f"{line}: no such file")


for page in pages:
    blocks = re.findall(r"```(\w*)\n(.*?)```", (source / page).read_text(), re.S)
    shown += [text for language, text in blocks if language == ""]
    with tempfile.TemporaryDirectory() as folder:
        # The commands run in a copy of the folders that they name, so that nothing is left in the sources.
        (pathlib.Path(folder) / "examples").symlink_to(source / "examples")
        (pathlib.Path(folder) / "demo_output").mkdir()
        # The font library keeps its configuration until the end, which leak checkers take for lost.
        leaks = pathlib.Path(folder) / "leaks"
        leaks.write_text("leak:libfontconfig\n")
        environment = {**os.environ, "LSAN_OPTIONS": f"suppressions={leaks}:print_suppressions=0"}
        for language, text in blocks:
            if language == "sh":
                run_commands(folder, environment, text)

for text in shown:
    if text not in outputs.values():
        failures.append(f"a result that is shown is none of the results:\n{text}")

lines = {line.split()[0].rsplit("/", 1)[-1]: output for line, output in outputs.items() if "arches_panorama_500.csv" in line}
if lines.get("esttform_main") != lines.get("esttform", "no estimate"):
    failures.append("the generated program prints something else than the engine")

program = next((text for language, text in re.findall(r"```(\w*)\n(.*?)```", readme, re.S) if language == "cpp"), "none")
if program != (source / "examples/shift.cpp").read_text():
    failures.append("the C++ program that is shown is not examples/shift.cpp")
printed = subprocess.run([str(shift_example)], capture_output=True, text=True).stdout.strip()
if f"prints `{printed}`" not in readme:
    failures.append(f"examples/shift.cpp prints {printed!r}, the README says otherwise")

for page in [*pages, *(str(path.relative_to(source)) for path in (source / "docs").glob("*.md"))]:
    for target in re.findall(r"\]\(([^)#:]+)\)", (source / page).read_text()):
        if not (source / page).parent.joinpath(target).exists():
            failures.append(f"{page}: link to {target}: no such file")

if len(outputs) < 12:
    failures.append(f"only {len(outputs)} commands were found")
print("\n".join(failures) or f"{len(outputs)} commands, program, results and links are as shown")
sys.exit(1 if failures else 0)
