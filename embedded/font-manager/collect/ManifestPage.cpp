#include "collect/ManifestPage.h"

#include "PrintableText.h"
#include "collect/Manifest.h"

namespace pellwick {
namespace {

constexpr char kBeginning[] = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<title>Collected fonts</title>
<style>
body { font-family: sans-serif; margin: 2em; }
table { border-collapse: collapse; }
th, td { border: 1px solid #999; padding: 0.3em 0.6em; text-align: left; vertical-align: top; }
.restricted { background: #fdd; }
</style>
</head>
<body>
)";
constexpr char kEnd[] = "</body>\n</html>\n";

/// How much of a licence a cell shows: enough to recognise it. The manifest for programs has all of it.
constexpr size_t kShownLicence = 300;

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char byte : WithoutUnprintables(text)) {
        switch (byte) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&#39;";
                break;
            default:
                escaped += byte;
        }
    }
    return escaped;
}

/// Texts of which each begins a line of a cell; empty ones are left out.
class Lines {
public:
    void Add(const std::string& text) {
        if (!text.empty())
            mHtml += (mHtml.empty() ? "" : "<br>") + Escaped(text);
    }
    const std::string& Html() const { return mHtml; }

private:
    std::string mHtml;
};

std::string UsesHtml(const Json& font) {
    Lines lines;
    for (const Json& use : ArrayMember(font, manifest::kUsedIn)) {
        const std::string document = StringMember(use, manifest::kDocument);
        const std::string where = StringMember(use, manifest::kWhere);
        lines.Add(document.empty() || where.empty() ? document + where : document + ": " + where);
    }
    return lines.Html();
}

std::string LicenceHtml(const Json& font) {
    Lines lines;
    const std::string text = StringMember(font, manifest::kLicence);
    const std::string beginning = FirstBytes(text, kShownLicence);
    lines.Add(beginning.size() < text.size() ? beginning + "\u2026" : text);
    lines.Add(StringMember(font, manifest::kLicenceURL));
    for (const Json& file : ArrayMember(font, manifest::kLicenceFiles))
        lines.Add(file.is_string() ? file.get<std::string>() : "");
    return lines.Html();
}

std::string Row(std::initializer_list<std::string> cells, const char* tag, const char* attributes = "") {
    std::string row = std::string("<tr") + attributes + ">";
    for (const std::string& cell : cells)
        row += std::string("<") + tag + ">" + cell + "</" + tag + ">";
    return row + "</tr>\n";
}

bool HasFile(const Json& font) {
    return !StringMember(font, manifest::kFile).empty();
}

std::string FontRow(const Json& font) {
    const auto text = [&](const char* key) { return Escaped(StringMember(font, key)); };
    const std::string rights = text(manifest::kRights);
    return Row({text(manifest::kPostScriptName), text(manifest::kFamily), text(manifest::kStyle),
                text(manifest::kFontVersion), text(manifest::kFile), rights, LicenceHtml(font),
                UsesHtml(font), text(manifest::kSource)},
               "td", rights.starts_with("restricted") ? " class=\"restricted\"" : "");
}

std::string CollectedTable(const Json& fonts) {
    std::string rows;
    for (const Json& font : fonts)
        rows += HasFile(font) ? FontRow(font) : "";
    if (rows.empty())
        return "<p>No fonts were collected.</p>\n";
    return "<table>\n" +
           Row({"Name", "Family", "Style", "Version", "File", "Rights", "Licence", "Used in", "Source"},
               "th") +
           rows + "</table>\n";
}

std::string ProblemOf(const Json& font) {
    const std::string problem = StringMember(font, manifest::kProblem);
    return problem.empty() ? "the font manager has no such font" : problem;
}

/// Those that nobody has, and those that were not copied.
std::string MissingSection(const Json& content) {
    std::string rows;
    for (const char* key : {manifest::kMissing, manifest::kFonts}) {
        for (const Json& font : ArrayMember(content, key)) {
            if (!HasFile(font))
                rows += Row({Escaped(StringMember(font, manifest::kPostScriptName)), UsesHtml(font),
                             Escaped(ProblemOf(font))},
                            "td");
        }
    }
    return rows.empty() ? ""
                        : "<h2>Missing fonts</h2>\n<table>\n" + Row({"Name", "Used in", "Why"}, "th") + rows +
                              "</table>\n";
}

}  // namespace

std::string ManifestPage(const Json& content) {
    return std::string(kBeginning) + "<h1>Collected fonts</h1>\n" +
           CollectedTable(ArrayMember(content, manifest::kFonts)) + MissingSection(content) + kEnd;
}

}  // namespace pellwick
