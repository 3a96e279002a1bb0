// The looks of the report: two sets of colours with a contrast of at least 4.5 to 1, system fonts, and rules for paper.
#pragma once

namespace esttform::app {

constexpr const char* REPORT_STYLE = R"(:root { --text: #1b1b1b; --faint: #595959; --page: #ffffff; --line: #c8c8c8; --card: #f3f4f6;
  --good: #1b6e3c; --warning: #8a4b00; --error: #a8201a; --note: #2b5d8a; }
@media (prefers-color-scheme: dark) {
  :root { --text: #e6e6e6; --faint: #a8a8a8; --page: #16181b; --line: #474b50; --card: #22252a;
    --good: #7fd6a0; --warning: #f2b25c; --error: #ff9a91; --note: #8fc1ee; }
}
* { box-sizing: border-box; }
body { margin: 0; background: var(--page); color: var(--text); font: 16px/1.5 system-ui, sans-serif; }
main, footer { max-width: 64rem; margin: 0 auto; padding: 1rem 1.25rem; }
h1 { font-size: 1.7rem; line-height: 1.25; margin: 0.5rem 0 0.25rem; }
h2 { font-size: 1.2rem; margin: 2rem 0 0.5rem; border-bottom: 1px solid var(--line); }
p { margin: 0.4rem 0; overflow-wrap: anywhere; }
section { overflow-x: auto; }
table { border-collapse: collapse; font-variant-numeric: tabular-nums; }
th, td { text-align: left; vertical-align: top; padding: 0.25rem 1.2rem 0.25rem 0; border-bottom: 1px solid var(--line); }
td:nth-child(2) { white-space: nowrap; }
td:nth-child(4) { min-width: 14rem; }
thead th { color: var(--faint); font-weight: 600; }
.matrix { border-left: 2px solid var(--text); border-right: 2px solid var(--text); font-family: ui-monospace, monospace; }
.matrix td { text-align: right; border: 0; padding: 0.1rem 0.8rem; }
.equation { font-family: ui-monospace, monospace; font-size: 0.9rem; }
.finding { background: var(--card); border-left: 5px solid; padding: 0.3rem 0.9rem; margin: 0.6rem 0; }
.finding.good, .finding.good p { color: var(--good); }
.finding.note, .finding.note p { color: var(--note); }
.finding.warning, .finding.warning p { color: var(--warning); }
.finding.error, .finding.error p { color: var(--error); }
.finding p + p, .finding.good p + p, .finding.note p + p, .finding.warning p + p, .finding.error p + p { color: var(--text); }
figure { margin: 0.6rem 0; }
figure svg { display: block; width: 100%; height: auto; background: #ffffff; border: 1px solid var(--line); }
figcaption, footer { color: var(--faint); font-size: 0.9rem; }
@media print {
  :root { --text: #000000; --faint: #404040; --page: #ffffff; --line: #b0b0b0; --card: #ffffff;
    --good: #000000; --warning: #000000; --error: #000000; --note: #000000; }
  body { font-size: 10pt; }
  figure svg { max-height: 160mm; border: 0; }
  figure, .finding, .matrix, tr { break-inside: avoid; }
  h2 { break-after: avoid; }
}
)";

}  // namespace esttform::app
