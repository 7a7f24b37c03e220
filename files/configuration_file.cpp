#include "files/configuration_file.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "files/json_document.h"
#include "files/json_schema.h"
#include "files/panel_data_file.h"

namespace lumeth {

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

Status SystemFailure(ErrorCode code, const char* what) {
    return Status::Fail(code, std::string(what) + ": " + std::strerror(errno));
}

// The whole of `path`; a JSON document is refused once it is known to be
// larger than the reader takes (its size known before reading, a pipe's
// after one piece past the limit at most).
Status ReadBytes(const std::string& path, std::string& bytes) {
    namespace fs = std::filesystem;
    std::error_code ec;
    if (!fs::exists(path, ec)) {
        return Status::Fail(ErrorCode::FileNotFound, "no such file");
    }
    if (fs::is_directory(path, ec)) {
        return Status::Fail(ErrorCode::PathFileAccessError, "is a folder, not a file");
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return SystemFailure(ErrorCode::PathFileAccessError, "cannot open");
    }
    bytes.assign(4096, '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<size_t>(in.gcount()));
    const bool json = LooksLikeJson(bytes);
    const std::uintmax_t size = fs::file_size(path, ec);
    if (const Status fits = CheckJsonDocumentSize(size); !ec && json && !fits) {
        return fits;
    }
    if (!ec) {
        // Grown piece by piece, the string would pass through copies of
        // half its size on the way.
        bytes.reserve(static_cast<size_t>(size));
    }
    char piece[64 * 1024];
    while (in && !(json && bytes.size() > kMaxJsonDocumentBytes)) {
        in.read(piece, sizeof piece);
        bytes.append(piece, static_cast<size_t>(in.gcount()));
    }
    if (in.bad()) {
        return SystemFailure(ErrorCode::DeviceIoError, "cannot read");
    }
    return Status::Ok();
}

void ReadJson(const std::string& bytes, Configuration& config) {
    config.form = ConfigurationForm::Json;
    config.store.ResetToDefaults();
    JsonReadResult result = ReadJsonDocument(bytes, config.store);
    config.status = std::move(result.status);
    config.hasAlphas = result.hasAlphas;
    config.password = std::move(result.password);
    config.sections = result.sections;
}

void ReadPanelData(const std::string& bytes, Configuration& config) {
    config.form = ConfigurationForm::PanelData;
    LoadResult result = LoadPanelData(bytes, config.store);
    config.version = result.version;
    config.sections = PanelDataSections(result.version);
    config.damage = std::move(result.damage);
    if (result.outcome != LoadOutcome::Loaded) {
        config.status = std::move(result.status);
    }
}

} // namespace

std::vector<CheckFinding> CheckConfiguration(const Configuration& config) {
    std::vector<CheckFinding> findings = config.damage;
    std::vector<CheckFinding> store = CheckStore(config.store, config.hasAlphas);
    findings.insert(findings.end(), std::make_move_iterator(store.begin()),
                    std::make_move_iterator(store.end()));
    return findings;
}

Status Configuration::RequireAllSections() const {
    if (form == ConfigurationForm::Json) {
        return RequireJsonSections(sections);
    }
    return RequireSections(sections, "a version " + std::to_string(version) +
                                         " panel data file has none; every section is sent");
}

Configuration ReadConfiguration(const std::string& path) {
    Configuration config;
    std::string bytes;
    config.status = ReadBytes(path, bytes);
    if (!config.status) {
        return config;
    }
    if (LooksLikeJson(bytes)) {
        ReadJson(bytes, config);
    } else {
        ReadPanelData(bytes, config);
    }
    return config;
}

void LoadConfigurationInto(const Configuration& read, PanelStore& store) {
    store.displayLists = read.store.displayLists;
    store.groups = read.store.groups;
    if (read.form == ConfigurationForm::PanelData) {
        TemplateTable templates = read.store.templates;
        templates.templateIndex = std::move(store.templates.templateIndex);
        templates.templatePosition = std::move(store.templates.templatePosition);
        store.templates = std::move(templates);
    } else {
        store.templates = read.store.templates;
    }
    if (read.hasAlphas) {
        store.alphas = read.store.alphas;
    }
}

std::optional<ConfigurationForm> FormForPath(const std::string& path) {
    const std::string ext = Lower(std::filesystem::path(path).extension().string());
    if (ext == ".dat") {
        return ConfigurationForm::PanelData;
    }
    if (ext == ".json") {
        return ConfigurationForm::Json;
    }
    return std::nullopt;
}

Status CheckEncodable(const Configuration& config, ConfigurationForm form) {
    if (form != ConfigurationForm::Json) {
        return Status::Ok();
    }
    Status status = CheckJsonDocumentValues(config.store);
    if (!status) {
        return Status::Fail(status.failure().code,
                            "cannot be written as a JSON document: " + status.failure().detail);
    }
    return status;
}

bool EncodeConfiguration(const Configuration& config, ConfigurationForm form,
                         const ByteSink& sink) {
    if (form == ConfigurationForm::PanelData) {
        return sink(EncodePanelData(config.store));
    }
    JsonDocumentOptions options;
    options.includeAlphas = config.hasAlphas;
    options.password = config.password;
    return WriteJsonDocument(config.store, options, sink);
}

} // namespace lumeth
