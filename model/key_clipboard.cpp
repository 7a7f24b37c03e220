#include "model/key_clipboard.h"

#include <algorithm>
#include <string>

#include "model/button_catalogue.h"
#include "model/button_templates.h"
#include "model/limits.h"

namespace lumeth {

namespace {

bool IsKey(int key) {
    return key >= 0 && key < kTemplateButtons;
}

// Keys in key order, each once, only those that exist.
std::vector<int> SortedKeys(std::vector<int> keys) {
    std::erase_if(keys, [](int key) { return !IsKey(key); });
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

Status NoKey(int key) {
    return Status::Fail(ErrorCode::SubscriptOutOfRange, "no key " + std::to_string(key));
}

// Template `t` grown to its 32 keys, ready to be written; nullptr (and the
// reason in `status`) when there is no such template.
ButtonTemplate* WritableTemplate(PanelStore& store, int t, Status& status) {
    status = FillButtonTemplate(store, t);
    return status ? &store.templates.buttonTemplates[static_cast<size_t>(t)] : nullptr;
}

Status CheckFill(const PanelStore& store, const KeyFill& fill) {
    if (!IsKey(fill.firstKey))
        return NoKey(fill.firstKey);
    if (fill.list < 0 || fill.list >= store.listCount(fill.subType) ||
        static_cast<size_t>(fill.list) >= store.lists(fill.subType).size())
        return Status::Fail(ErrorCode::SubscriptOutOfRange,
                            std::string("no ") + SubTypeName(fill.subType) + " display list " +
                                std::to_string(fill.list));
    const std::vector<int16_t> functions = FunctionsForChannels(fill.subType);
    if (std::find(functions.begin(), functions.end(), fill.function) == functions.end())
        return Status::Fail(ErrorCode::InvalidProcedureCall,
                            "function " + std::to_string(fill.function) + " takes no " +
                                SubTypeName(fill.subType) + " channel");
    return Status::Ok();
}

} // namespace

KeyClipboard CopyKeys(const PanelStore& store, int t, std::vector<int> keys) {
    KeyClipboard clipboard;
    if (t < 0 || t >= store.templates.templateCount)
        return clipboard;
    const ButtonTemplate& tpl = RefAt(store.templates.buttonTemplates, t);
    const int count = std::min<int>(tpl.buttonCount, static_cast<int>(tpl.buttons.size()));
    for (int key : SortedKeys(std::move(keys))) {
        if (key < count)
            clipboard.keys.push_back(tpl.buttons[static_cast<size_t>(key)]);
    }
    return clipboard;
}

KeysWritten PasteKeys(PanelStore& store, int t, int first, const KeyClipboard& clipboard) {
    KeysWritten result;
    if (!IsKey(first)) {
        result.status = NoKey(first);
        return result;
    }
    ButtonTemplate* tpl = WritableTemplate(store, t, result.status);
    if (tpl == nullptr)
        return result;
    const int room = kTemplateButtons - first;
    const int total = static_cast<int>(clipboard.keys.size());
    result.written = std::min(total, room);
    result.cutOff = total - result.written;
    std::copy_n(clipboard.keys.begin(), result.written, tpl->buttons.begin() + first);
    return result;
}

Status DeleteKeys(PanelStore& store, int t, const std::vector<int>& keys) {
    Status status;
    ButtonTemplate* tpl = WritableTemplate(store, t, status);
    if (tpl == nullptr)
        return status;
    for (int key : SortedKeys(keys))
        tpl->buttons[static_cast<size_t>(key)] = BlankTemplateButton(key);
    return status;
}

KeysWritten FillKeysFromList(PanelStore& store, int t, const KeyFill& fill) {
    KeysWritten result;
    result.status = CheckFill(store, fill);
    if (!result.status)
        return result;
    ButtonTemplate* tpl = WritableTemplate(store, t, result.status);
    if (tpl == nullptr)
        return result;
    const DisplayList& list = store.lists(fill.subType)[static_cast<size_t>(fill.list)];
    const int total =
        std::min<int>(ValidCount(list.channelCount), static_cast<int>(list.channels.size()));
    result.written = std::min(total, kTemplateButtons - fill.firstKey);
    result.cutOff = total - result.written;
    for (int i = 0; i < result.written; ++i) {
        PanelButton& key = tpl->buttons[static_cast<size_t>(fill.firstKey + i)];
        key.type = fill.function;
        key.channel = list.channels[static_cast<size_t>(i)];
        key.captionOption = static_cast<int16_t>(key.captionOption & ~1);
    }
    return result;
}

std::vector<int16_t> FunctionsForChannels(SubType subType) {
    std::vector<int16_t> codes;
    for (const ButtonFunction& function : ButtonCatalogue()) {
        if (function.channelSubType == subType)
            codes.push_back(function.code);
    }
    return codes;
}

} // namespace lumeth
