"""Checks a report as a page: well-formed, self-contained, and, in headless Chromium, readable in light, dark and narrow.

Usage: report_page_test.py ESTTFORM DATA_FOLDER
"""
import html
import html.parser
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

esttform, data = (pathlib.Path(arg).resolve() for arg in sys.argv[1:3])
SKIPPED = 77
VOID_TAGS = {"meta", "br", "link", "img"}
MEASURE = """<script>
function rgb(text) { return text.match(/[0-9.]+/g).map(Number); }
function luminance(c) {
  return c.slice(0, 3).map(v => v / 255).map(v => v <= 0.03928 ? v / 12.92 : ((v + 0.055) / 1.055) ** 2.4)
          .reduce((sum, v, i) => sum + v * [0.2126, 0.7152, 0.0722][i], 0);
}
function background(e) {
  for (; e; e = e.parentElement) { const c = rgb(getComputedStyle(e).backgroundColor); if (c.length < 4 || c[3] > 0) return c; }
  return [255, 255, 255];
}
const texts = [...document.querySelectorAll('h1, h2, p, td, th, figcaption, strong')];
const contrasts = texts.map(e => [luminance(rgb(getComputedStyle(e).color)), luminance(background(e))].sort((a, b) => b - a))
                       .map(([high, low]) => (high + 0.05) / (low + 0.05));
const picture = document.querySelector('svg').getBoundingClientRect();
const measured = {contrast: Math.min(...contrasts), page: luminance(background(document.body)), picture: picture.width,
                  overflow: document.documentElement.scrollWidth - document.documentElement.clientWidth, texts: texts.length};
document.body.innerHTML = '<pre id="measured">' + JSON.stringify(measured) + '</pre>';
</script></body>"""


class Checker(html.parser.HTMLParser):
    """Open tags, and what a page must not refer to."""

    def __init__(self):
        super().__init__()
        self.open, self.faults = [], []

    def handle_starttag(self, tag, attributes):
        if tag == "script":
            self.faults.append("script")
        for name, value in attributes:
            if name in ("src", "href", "xlink:href") and not value.startswith(("#", "data:")):
                self.faults.append(f"{tag} {name}={value}")
        if tag not in VOID_TAGS:
            self.open.append(tag)

    def handle_startendtag(self, tag, attributes):
        self.handle_starttag(tag, attributes)
        if tag not in VOID_TAGS:
            self.open.pop()

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            self.faults.append(f"</{tag}> closes another element")


def measured(chromium, folder, page, scheme, width):
    """What the browser makes of the page: a copy of it measures itself."""
    copy = folder / "measured.html"
    copy.write_text(page.replace("</body>", MEASURE))
    # The scheme is 0 for dark, 1 for light. The sandbox needs rights that containers do not give.
    run = subprocess.run([chromium, "--headless", "--no-sandbox", "--disable-gpu", f"--user-data-dir={folder / 'profile'}",
                          f"--blink-settings=preferredColorScheme={scheme}", f"--window-size={width},900", "--dump-dom",
                          copy.as_uri()], capture_output=True, text=True, timeout=120)
    found = re.search(r'<pre id="measured">(.*?)</pre>', run.stdout)
    return json.loads(html.unescape(found.group(1))) if found else {"failed": run.stderr}


failures = []
with tempfile.TemporaryDirectory() as name:
    folder = pathlib.Path(name)
    images = [f"--image{i}={data / 'images' / file}" for i, file in ((1, "box.png"), (2, "box_in_scene.png"))]
    # The font library keeps its configuration until the end, which leak checkers take for lost.
    (folder / "leaks").write_text("leak:libfontconfig\n")
    environment = {**os.environ, "LSAN_OPTIONS": f"suppressions={folder / 'leaks'}:print_suppressions=0"}
    # The second image in place of the first brings a warning into the page.
    subprocess.run([esttform, "estimate", data / "box_in_scene.csv", "--seed=1", "-q", "--report", folder / "report.html",
                    images[0], images[0].replace("image1", "image2")], check=True, capture_output=True, env=environment)
    page = (folder / "report.html").read_text()
    checker = Checker()
    checker.feed(page)
    failures += checker.faults + [f"<{tag}> is not closed" for tag in checker.open]
    if "class=\"finding warning\"" not in page:
        failures.append("no warning in the page")

    chromium = shutil.which("chromium")
    for scheme, is_dark, width in ((1, False, 1100), (0, True, 1100), (1, False, 500)) if chromium else ():
        m = measured(chromium, folder, page, scheme, width)
        print(scheme, width, m)
        if "failed" in m or m["contrast"] < 4.5 or (m["page"] < 0.2) != is_dark or m["overflow"] > 0 \
                or not 400 <= m["picture"] <= width or m["texts"] < 50:
            failures.append(f"scheme {scheme}, {width} pixels wide: {m}")

print("\n".join(failures))
if not failures and not chromium:
    print("the page is well-formed; it was not rendered, because chromium is not installed")
    sys.exit(SKIPPED)
sys.exit(1 if failures else 0)
