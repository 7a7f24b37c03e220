#include "tools/cli/cli_common.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "files/json_document.h"
#include "files/panel_data_file.h"

namespace lumeth::cli {

namespace {

bool LooksLikeJson(const std::string& bytes) {
    size_t i = 0;
    if (bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) {
        i = 3;
    }
    while (i < bytes.size() &&
           (bytes[i] == ' ' || bytes[i] == '\t' || bytes[i] == '\r' || bytes[i] == '\n')) {
        ++i;
    }
    return i < bytes.size() && bytes[i] == '{';
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

} // namespace

int ToInt(ExitCode code) {
    return static_cast<int>(code);
}

void PrintUsage(std::ostream& out) {
    out << "usage: lumeth-cli <command> [arguments]\n"
           "       lumeth-cli --help | --version\n\ncommands:\n";
    for (const Command& c : Commands()) {
        const std::string synopsis = std::string(c.name) + " " + c.arguments;
        // A synopsis too long for the column puts its summary on the next line.
        if (synopsis.size() < 24) {
            out << "  " << synopsis << std::string(24 - synopsis.size(), ' ') << c.summary << "\n";
        } else {
            out << "  " << synopsis << "\n" << std::string(26, ' ') << c.summary << "\n";
        }
    }
    out << CommandOptionsHelp();
    out << "\nFILE and IN may be a panel data file (.dat) or a JSON document (.json); the\n"
           "content tells which. The extension of OUT (.dat or .json) chooses its form.\n"
           "\nexit codes: 0 success, 1 usage error, 2 bad input, 3 server module unreachable\n"
           "or link lost, 4 wrong password, 5 timed out waiting for the server module,\n"
           "6 apply: the server module holds a configuration that differs from FILE,\n"
           "7 cannot write an output file or standard output\n";
}

int UsageError(const std::string& message) {
    std::cerr << "lumeth-cli: " << message << "\n\n";
    PrintUsage(std::cerr);
    return ToInt(ExitCode::Usage);
}

int Error(ExitCode code, const std::string& line) {
    std::cerr << "lumeth-cli: " << line << "\n";
    return ToInt(code);
}

bool LoadDocument(const std::string& path, Document& doc, std::string& error) {
    namespace fs = std::filesystem;
    std::error_code ec;
    if (!fs::exists(path, ec)) {
        error = path + ": no such file";
        return false;
    }
    if (fs::is_directory(path, ec)) {
        error = path + ": is a folder, not a file";
        return false;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = path + ": cannot open: " + std::strerror(errno);
        return false;
    }
    // A JSON document too large to read is refused before it is loaded (its
    // size known: a pipe is read as it comes).
    std::string bytes(4096, '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<size_t>(in.gcount()));
    const std::uintmax_t size = fs::file_size(path, ec);
    if (const Status fits = CheckJsonDocumentSize(size); !ec && LooksLikeJson(bytes) && !fits) {
        error = path + ": " + fits.failure().detail;
        return false;
    }
    // A JSON document of unknown size (a pipe) is read one piece past the
    // limit at most.
    const bool json = LooksLikeJson(bytes);
    char piece[64 * 1024];
    while (in && !(json && bytes.size() > kMaxJsonDocumentBytes)) {
        in.read(piece, sizeof piece);
        bytes.append(piece, static_cast<size_t>(in.gcount()));
    }
    if (in.bad()) {
        error = path + ": cannot read: " + std::strerror(errno);
        return false;
    }

    if (json) {
        doc.form = Document::Form::Json;
        doc.store.ResetToDefaults();
        const JsonReadResult result = ReadJsonDocument(bytes, doc.store);
        if (!result.status) {
            error = path + ": " + result.status.failure().detail;
            return false;
        }
        doc.hasAlphas = result.hasAlphas;
        doc.password = result.password;
        doc.allSections = result.RequireAllSections();
        return true;
    }

    doc.form = Document::Form::PanelData;
    const LoadResult result = LoadPanelData(bytes, doc.store);
    if (result.outcome != LoadOutcome::Loaded) {
        error = path + ": " + result.status.failure().detail;
        return false;
    }
    doc.version = result.version;
    doc.hasAlphas = false;
    doc.password.reset();
    // Files before version 3 hold no Opto or Relay display lists: a load
    // leaves the single default list of each, which is not the file's.
    if (doc.version != kPanelDataVersion) {
        doc.allSections = Status::Fail(
            ErrorCode::InvalidFileFormat,
            "missing display_lists.opto, display_lists.relay (a version " +
                std::to_string(doc.version) + " panel data file has none; every section is sent)");
    }
    return true;
}

std::optional<Document::Form> FormForPath(const std::string& path) {
    const std::string ext = Lower(std::filesystem::path(path).extension().string());
    if (ext == ".dat") {
        return Document::Form::PanelData;
    }
    if (ext == ".json") {
        return Document::Form::Json;
    }
    return std::nullopt;
}

bool CheckEncodable(const Document& doc, Document::Form form, std::string& error) {
    if (form == Document::Form::Json) {
        const Status status = CheckJsonDocumentValues(doc.store);
        if (!status) {
            error = "cannot be written as a JSON document: " + status.failure().detail;
            return false;
        }
    }
    return true;
}

bool EncodeDocument(const Document& doc, Document::Form form, const ByteSink& sink) {
    if (form == Document::Form::PanelData) {
        return sink(EncodePanelData(doc.store));
    }
    JsonDocumentOptions options;
    options.includeAlphas = doc.hasAlphas;
    options.password = doc.password;
    return WriteJsonDocument(doc.store, options, sink);
}

int WriteDocumentFile(const Document& doc, Document::Form form, const std::string& path,
                      const std::string& source) {
    std::string error;
    if (!CheckEncodable(doc, form, error)) {
        return Error(ExitCode::BadInput, source + ": " + error);
    }
    const bool secret = form == Document::Form::Json && doc.password.has_value();
    const Status status = ReplaceFile(
        path, [&](const ByteSink& sink) { return EncodeDocument(doc, form, sink); },
        secret ? NewFileAccess::Owner : NewFileAccess::Shared);
    if (!status) {
        return Error(ExitCode::WriteFailed,
                     "cannot write " + path + ": " + status.failure().detail);
    }
    return ToInt(ExitCode::Ok);
}

int DisplayListTotal(const PanelStore& store) {
    int total = 0;
    for (SubType subType : kAllSubTypes) {
        total += store.listCount(subType);
    }
    return total;
}

} // namespace lumeth::cli
