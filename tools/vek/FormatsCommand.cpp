// vek formats: lists the exported format codes of every family, with their
// display names and canonical roots, as text for people or JSON for tools.
#include "Commands.h"
#include "Json.h"
#include "MediaText.h"

#include <vek/media/Media.h>

#include <cstdio>
#include <cstring>
#include <string>

using namespace Quorvex::Vek;

namespace VekTool {

namespace {

struct FormatFamily {
    const char* label;
    const FormatConstant* (*constants)();
    size_t (*count)();
    const char* (*name)(unsigned int);         // null when the family has no names
    unsigned int (*canonical)(unsigned int);   // null when it has no parents
};

const FormatFamily kFamilies[] = {
    {"video", VideoFormat::GetConstants, VideoFormat::GetConstantCount, VideoFormat::GetName,
     VideoFormat::GetCanonicalFormat},
    {"audio", AudioFormat::GetConstants, AudioFormat::GetConstantCount, AudioFormat::GetName,
     AudioFormat::GetCanonicalFormat},
    {"subtitle", SubtitleFormat::GetConstants, SubtitleFormat::GetConstantCount,
     SubtitleFormat::GetName, SubtitleFormat::GetCanonicalFormat},
    {"metadata", MetadataFormat::GetConstants, MetadataFormat::GetConstantCount, nullptr, nullptr},
    {"container", ContainerFormat::GetConstants, ContainerFormat::GetConstantCount,
     ContainerFormat::GetName, nullptr},
};

void PrintUsage(std::FILE* out)
{
    std::fputs("usage: vek formats [--family audio|video|subtitle|metadata|container] [--json]\n"
               "\n"
               "Lists the media format codes: every exported constant of each family with\n"
               "its four-character code (as hexadecimal where it is not printable), its\n"
               "display name and its canonical root where the family has them.\n"
               "\n"
               "  --family NAME  list one family only\n"
               "  --json         print JSON instead of text\n"
               "  --help         show this text\n"
               "\n"
               "exit codes: 0 listed, 1 unknown family, 2 bad command line\n",
               out);
}

// Printable codes are quoted so that padding blanks stay visible.
std::string QuotedCodeText(uint32_t code)
{
    if (!IsPrintable(code))
        return CodeText(code);
    std::string quoted(1, '\'');
    quoted += CodeText(code);
    quoted += '\'';
    return quoted;
}

const char* NameOf(const FormatFamily& family, uint32_t code)
{
    return family.name ? family.name(code) : nullptr;
}

uint32_t CanonicalOf(const FormatFamily& family, uint32_t code)
{
    return family.canonical ? family.canonical(code) : 0;
}

// Characters, not bytes, of UTF-8 text ("\xCE\xBC-law" is five wide).
size_t DisplayWidth(const std::string& text)
{
    size_t width = 0;
    for (unsigned char c : text)
        width += (c & 0xC0) != 0x80;
    return width;
}

// One row of the text table; columns a family lacks are left out, and the
// line carries no trailing blanks.
void PrintRow(const FormatFamily& family, const std::string& code, const char* constant,
              const std::string& name, const std::string& canonical)
{
    char head[64];
    std::snprintf(head, sizeof head, "  %-12s %-24s ", code.c_str(), constant);
    std::string line = head;
    if (family.name) {
        line += name;
        const size_t width = DisplayWidth(name);
        if (width < 44)
            line.append(44 - width, ' ');
        line += ' ';
    }
    if (family.canonical)
        line += canonical;
    while (!line.empty() && line.back() == ' ')
        line.pop_back();
    std::printf("%s\n", line.c_str());
}

void PrintText(const FormatFamily& family)
{
    const FormatConstant* constants = family.constants();
    const size_t count = family.count();
    std::printf("%s (%zu codes)\n", family.label, count);
    PrintRow(family, "code", "constant", "name", "canonical");
    for (size_t i = 0; i < count; ++i) {
        const FormatConstant& c = constants[i];
        const char* name = NameOf(family, c.code);
        const uint32_t canonical = CanonicalOf(family, c.code);
        PrintRow(family, QuotedCodeText(c.code), c.name, name ? name : "-",
                 canonical ? QuotedCodeText(canonical) : "-");
    }
}

void PrintJson(const FormatFamily& family, bool last)
{
    const FormatConstant* constants = family.constants();
    const size_t count = family.count();
    std::printf("    {\n      \"family\": \"%s\",\n      \"count\": %zu,\n      \"formats\": [\n",
                family.label, count);
    for (size_t i = 0; i < count; ++i) {
        const FormatConstant& c = constants[i];
        const uint32_t canonical = CanonicalOf(family, c.code);
        std::printf("        {\"constant\": %s, \"code\": %s, \"value\": %u, \"name\": %s, "
                    "\"canonical\": %s}%s\n",
                    JsonString(c.name).c_str(), JsonString(CodeText(c.code).c_str()).c_str(),
                    static_cast<unsigned>(c.code), JsonString(NameOf(family, c.code)).c_str(),
                    canonical ? JsonString(CodeText(canonical).c_str()).c_str() : "null",
                    i + 1 < count ? "," : "");
    }
    std::printf("      ]\n    }%s\n", last ? "" : ",");
}

} // namespace

int RunFormats(int argc, char** argv)
{
    bool json = false;
    const char* only = nullptr;
    for (int i = 0; i < argc; ++i) {
        const char* arg = argv[i];
        if (!std::strcmp(arg, "--help") || !std::strcmp(arg, "-h")) {
            PrintUsage(stdout);
            return kExitOk;
        }
        if (!std::strcmp(arg, "--json")) {
            json = true;
        } else if (!std::strcmp(arg, "--family")) {
            if (i + 1 == argc || only) {
                std::fputs(only ? "vek formats: --family given twice\n\n"
                                : "vek formats: --family needs a family name\n\n",
                           stderr);
                PrintUsage(stderr);
                return kExitUsage;
            }
            only = argv[++i];
        } else {
            std::fprintf(stderr, "vek formats: unknown argument '%s'\n\n", arg);
            PrintUsage(stderr);
            return kExitUsage;
        }
    }

    const FormatFamily* selected[std::size(kFamilies)] = {};
    size_t selectedCount = 0;
    for (const FormatFamily& family : kFamilies)
        if (!only || !std::strcmp(only, family.label))
            selected[selectedCount++] = &family;
    if (selectedCount == 0) {
        std::fprintf(stderr,
                     "vek formats: unknown family '%s' (audio, video, subtitle, metadata, container)\n",
                     only);
        return kExitFailure;
    }

    if (json)
        std::printf("{\n  \"families\": [\n");
    for (size_t i = 0; i < selectedCount; ++i) {
        if (json) {
            PrintJson(*selected[i], i + 1 == selectedCount);
        } else {
            if (i > 0)
                std::printf("\n");
            PrintText(*selected[i]);
        }
    }
    if (json)
        std::printf("  ]\n}\n");
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
        std::fputs("vek formats: could not write the listing\n", stderr);
        return kExitFailure;
    }
    return kExitOk;
}

} // namespace VekTool
