// The HTML report: what it says, and that nothing from outside becomes a part of the page's structure.
#include "report/report.h"

#include <gtest/gtest.h>

namespace esttform::app {
namespace {

/// Three inliers under a shift by (10, 0), and an outlier.
Report shiftReport()
{
    Report report;
    report.inputName = "folder/<b>&\"matches\xff.csv";
    report.scene.pairs = {{0, 0, 10, 0}, {50, 0, 60, 0.5}, {0, 50, 10, 50}, {50, 50, 5, 5}};
    report.scene.inliers = {1, 1, 1, 0};
    report.scene.map = PointMap{{1, 0, 10, 0, 1, 0, 0, 0, 1}};
    report.scene.threshold = 4.0;
    report.result = {4, {{1, 0, 10}, {0, 1, 0}}, "(x2, y2)' = TForm * (x1, y1, 1)'", ""};
    report.foundNum = 1;
    return report;
}

BlockSetup setup()
{
    BlockOptions options;
    options.type = "affine";
    options.thresholdPx = 2.0;
    options.seed = 7;
    return resolveBlockOptions(options);
}

int countOf(const std::string& page, const std::string& text)
{
    int num = 0;
    for (std::size_t at = page.find(text); at != std::string::npos; at = page.find(text, at + 1))
        ++num;
    return num;
}

TEST(ReportTest, TellsResultSettingsAndFindings)
{
    Report report = shiftReport();
    report.warnings = {{"pairs.csv", "5 < 6 & \"7\""}};
    report.diagnosis = {{Severity::Good, "spread", "wide", ""}, {Severity::Error, "mirrored", "<script>", ""}};
    const std::string page = renderReport(report, setup());
    for (const char* const text :
         {"<h1>3 of 4 pairs are inliers (75.0 %)</h1>", "<td>1</td><td>0</td><td>10</td>", "(x2, y2)' = TForm",
          "<td>disThrAffine</td><td>4 (default 9)</td>", "<td>seed</td><td>7</td>", "<h2>Diagnosis</h2>", "<h2>Warnings</h2>",
          "warning: pairs.csv", "5 &lt; 6 &amp; &quot;7&quot;", "error: mirrored", "good: spread", "&lt;script&gt;",
          "folder/&lt;b&gt;&amp;&quot;matches\xef\xbf\xbd.csv", "<td>largest</td><td>0.5 px</td>"})
        EXPECT_EQ(countOf(page, text), 1) << text;
    EXPECT_EQ(countOf(page, "<script"), 0);
    EXPECT_EQ(countOf(page, "<?xml"), 0);
    EXPECT_EQ(countOf(page, "<svg"), 1);
}

TEST(ReportTest, WithoutResultThereIsNoMatrix)
{
    Report report = shiftReport();
    report.scene.map.reset();
    report.scene.inliers = {0, 0, 0, 0};
    std::string page = renderReport(report, setup());
    EXPECT_EQ(countOf(page, "<h1>No transformation found</h1>"), 1);
    EXPECT_EQ(countOf(page, "class=\"matrix\""), 0);
    EXPECT_EQ(countOf(page, "<h2>Diagnosis</h2>"), 0);
    report.result.error = "someId: refused";
    page = renderReport(report, setup());
    EXPECT_EQ(countOf(page, "someId: refused"), 1);
}

}  // namespace
}  // namespace esttform::app
