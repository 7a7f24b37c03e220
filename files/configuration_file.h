#pragma once

#include <optional>
#include <string>
#include <vector>

#include "files/file_io.h"
#include "model/failure.h"
#include "model/panel_store.h"
#include "model/parts.h"
#include "model/store_check.h"

namespace lumeth {

// The two forms a panel configuration is kept in.
enum class ConfigurationForm { PanelData, Json };

// A panel configuration as read from a file, with the optional parts a JSON
// document may carry.
struct Configuration {
    ConfigurationForm form = ConfigurationForm::PanelData;
    int version = 0; // panel data file version
    PanelStore store;
    bool hasAlphas = false;
    std::optional<std::string> password; // bytes
    // The parts the file holds; the others are left at their defaults (a
    // JSON document's left-out sections, a panel data file's Opto and Relay
    // display lists before version 3).
    PartSet sections;
    Status status; // the detail says what is wrong, without the path
    // A panel data file's damage found while reading it (see LoadResult).
    std::vector<CheckFinding> damage;

    // Fails naming the sections the file does not hold: for sending it, where
    // a missing section would empty that part on the server module.
    Status RequireAllSections() const;
};

// Read `path` once, as a panel data file or a JSON document told apart by
// content: a JSON document starts with '{' (after blanks or a byte order
// mark). A JSON document too large to read is refused before it is loaded.
Configuration ReadConfiguration(const std::string& path);

// The file's damage, then CheckStore's findings on what it holds.
std::vector<CheckFinding> CheckConfiguration(const Configuration& config);

// Put what `read` holds into `store` the way loading its file there does: the
// display lists, user groups and templates are replaced, the channel names
// only by a JSON document that has them, and a panel data file leaves the
// store's template index pair as it was.
void LoadConfigurationInto(const Configuration& read, PanelStore& store);

// The form an output file gets from its extension (.dat or .json, any case).
std::optional<ConfigurationForm> FormForPath(const std::string& path);

// Whether `config` can be written in `form` (a panel data file can hold
// channel numbers the JSON document does not allow).
Status CheckEncodable(const Configuration& config, ConfigurationForm form);
// `config` in `form`, piece by piece into `sink`; false when the sink failed.
// Channel names and the password have no place in a panel data file.
bool EncodeConfiguration(const Configuration& config, ConfigurationForm form, const ByteSink& sink);

} // namespace lumeth
