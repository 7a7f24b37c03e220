#pragma once

#include <optional>

#include "model/parts.h"

namespace lumeth {

// A value of a record of the store, as checks and readers point at it.
// Record-level fields belong to the display list, user group or template
// `record`; entry-level fields to entry `entry` of that record.
enum class StoreField : unsigned char {
    Record,         // the record as a whole (or the part, without a record)
    Name,           // a list's, group's or template's name
    Channel,        // a display list's channel `entry`
    GroupEntry,     // a user group's list entry `entry`
    EntryType,      // its list type
    EntryIndex,     // its list position
    TemplateNumber, // a template's number
    Button,         // a template's button `entry`
    ButtonType,     // its function code
    CaptionOption,
    Label,
    ButtonChannel,
    ButtonChannel2,
};

// Where in the store a value lives: part, record index, field, entry index.
struct StoreLocation {
    Part part = Part::InputLists;
    int record = -1; // -1: the part as a whole
    StoreField field = StoreField::Record;
    int entry = -1; // for entry-level fields

    bool operator==(const StoreLocation&) const = default;
};

} // namespace lumeth
