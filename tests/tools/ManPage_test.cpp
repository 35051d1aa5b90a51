#include <gtest/gtest.h>

#include <string>

#include "ManPage.h"

namespace marvento::mangen {
namespace {

struct TextCase {
  const char* name;
  std::string input;
  std::string output;  // empty when an error is expected
  std::string error;   // part of the error message
};

// The text must be the expected one, and an error must be refused with the expected words.
void ExpectResult(const Result& r, const TextCase& c) {
  EXPECT_EQ(r.text, c.output);
  if (c.error.empty())
    EXPECT_EQ(r.error, "");
  else
    EXPECT_NE(r.error.find(c.error), std::string::npos) << r.error;
}

class EscapeTextTest : public ::testing::TestWithParam<TextCase> {};

// What groff would take as a request, a font change or a typographic sign must come out as
// the plain character; what is no text must be refused rather than passed on.
TEST_P(EscapeTextTest, Escapes) {
  ExpectResult(EscapeText(GetParam().input), GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Table, EscapeTextTest,
    ::testing::Values(TextCase{"HyphenIsMinus", "--link a-b", R"(\-\-link a\-b)", ""},
                      TextCase{"Backslash", R"(C:\dir)", R"(C:\edir)", ""},
                      TextCase{"LeadingDotIsNoRequest", ".TH x", R"(\&.TH x)", ""},
                      TextCase{"LeadingApostropheBecomesSign", "'x' y", R"(\(aqx\(aq y)", ""},
                      TextCase{"TildeAndCaretStayAscii", "~/a^b`c", R"(\(ti/a\(hab\(gac)", ""},
                      TextCase{"UmlautsAndSignsPassAsUtf8", "Größe 13°22′ €", "Größe 13°22′ €", ""},
                      TextCase{"FourByteCharacter", "\xF0\x9F\x93\xA1", "\xF0\x9F\x93\xA1", ""},
                      TextCase{"TruncatedSequence", "Gr\xC3", "", "UTF-8"},
                      TextCase{"OverlongSlash", "\xC0\xAF", "", "UTF-8"},
                      TextCase{"Surrogate", "\xED\xA0\x80", "", "UTF-8"},
                      TextCase{"Latin1Byte",
                               "Gr\xF6\xDF"
                               "e",
                               "", "UTF-8"},
                      TextCase{"Tab", "a\tb", "", "control"}),
    [](const auto& info) { return std::string(info.param.name); });

class FormatInlineTest : public ::testing::TestWithParam<TextCase> {};

TEST_P(FormatInlineTest, Formats) {
  ExpectResult(FormatInline(GetParam().input), GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Table, FormatInlineTest,
    ::testing::Values(TextCase{"BoldReference", "**marvento**(1)", R"(\fBmarvento\fR(1))", ""},
                      TextCase{"OptionAndValue", "**--link** __PATH__",
                               R"(\fB\-\-link\fR \fIPATH\fR)", ""},
                      TextCase{"ItalicBeforeText", "__FILE__.edi", R"(\fIFILE\fR.edi)", ""},
                      TextCase{"BoldGlued", "**--name=**__V__", R"(\fB\-\-name=\fR\fIV\fR)", ""},
                      TextCase{"SingleMarksStay", "a * b _c_", "a * b _c_", ""},
                      TextCase{"DotInsideBoldAtStart", "**.x**", R"(\fB.x\fR)", ""},
                      TextCase{"DotAtStartBeforeBold", ".x **b**", R"(\&.x \fBb\fR)", ""},
                      TextCase{"BoldNotClosed", "**open", "", "** not closed"},
                      TextCase{"ItalicNotClosed", "a __b", "", "__ not closed"},
                      TextCase{"Nested", "__a **b** c__", "", "nest"},
                      TextCase{"BadByteInsideBold", "**\xFF**", "", "UTF-8"}),
    [](const auto& info) { return std::string(info.param.name); });

const std::string kPage = R"(# comment
@page demo-tool 1
@date 2026-01-02

@lang de Handbuch
= BEZEICHNUNG
demo-tool - Beispiel

@lang en Demo manual
= NAME
demo-tool - example

= DESCRIPTION
First paragraph
  continues here.

Second.
: **-x**
does x
    and more
| demo-tool -x
|   indented
|
after the example

* one
* two
== Sub
Usage \
next line
)";

// The layout decisions: headings take the next line, a blank line makes the next text a new
// paragraph, a term's description runs on to the blank line, examples keep their spaces.
TEST(RenderPage, WritesOneLanguageAsManText) {
  const Result r = RenderPage(kPage, "en", "Marvento 1.2.3");
  ASSERT_EQ(r.error, "");
  EXPECT_EQ(r.text, R"(.\" -*- coding: UTF-8 -*-
.\" Generated from demo-tool.man while building; edit that file.
.TH DEMO\-TOOL 1 2026\-01\-02 "Marvento 1.2.3" "Demo manual"
.nh
.SH
NAME
demo\-tool \- example
.SH
DESCRIPTION
First paragraph
continues here.
.PP
Second.
.TP
\fB\-x\fR
does x
and more
.RS 4
.nf
demo\-tool \-x
  indented
\&
.fi
.RE
after the example
.IP \(bu 2
one
.IP \(bu 2
two
.SS
Sub
Usage
.br
next line
)");
}

TEST(RenderPage, TakesOnlyTheAskedLanguage) {
  const Result r = RenderPage(kPage, "de", "Marvento 1.2.3");
  ASSERT_EQ(r.error, "");
  EXPECT_NE(r.text.find("\"Handbuch\"\n"), std::string::npos);
  EXPECT_NE(r.text.find("BEZEICHNUNG\ndemo\\-tool \\- Beispiel\n"), std::string::npos);
  EXPECT_EQ(r.text.find("DESCRIPTION"), std::string::npos);
}

struct SourceCase {
  const char* name;
  std::string source;
  std::string lang;
  std::string error;
};

class RenderPageErrorTest : public ::testing::TestWithParam<SourceCase> {};

// A source the page cannot be built from stops the build, naming the line.
TEST_P(RenderPageErrorTest, Refuses) {
  const SourceCase& c = GetParam();
  const Result r = RenderPage(c.source, c.lang, "Marvento 1");
  EXPECT_EQ(r.text, "");
  EXPECT_NE(r.error.find(c.error), std::string::npos) << r.error;
}

const std::string kHead = "@page p 1\n@date 2026-01-02\n";
INSTANTIATE_TEST_SUITE_P(
    Table, RenderPageErrorTest,
    ::testing::Values(
        SourceCase{"NoPage", "@date 2026-01-02\n@lang en M\n= NAME\n", "en", "no @page"},
        SourceCase{"NoDate", "@page p 1\n@lang en M\n= NAME\n", "en", "no @date"},
        SourceCase{"MalformedDate", "@page p 1\n@date 2.1.2026\n", "en",
                   "line 2: unknown or malformed"},
        SourceCase{"LanguageMissing", kHead + "@lang de M\n= NAME\n", "en", "no @lang en"},
        SourceCase{"LanguageTwice", kHead + "@lang en M\nx\n@lang en M\n", "en",
                   "line 5: second @lang"},
        SourceCase{"UnknownDirective", kHead + "@lang en M\n@include x\n", "en", "line 4: unknown"},
        SourceCase{"TextBeforeLanguage", kHead + "stray text\n@lang en M\n", "en",
                   "line 3: text before"},
        SourceCase{"QuoteInTitle", kHead + "@lang en The \"M\"\n= NAME\n", "en", "quotation mark"},
        SourceCase{"MarkupError", kHead + "@lang en M\n= NAME\n**x\n", "en",
                   "line 5: ** not closed"},
        SourceCase{"BadByteInExample", kHead + "@lang en M\n| \xFF\n", "en", "line 4: no UTF-8"}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace marvento::mangen
