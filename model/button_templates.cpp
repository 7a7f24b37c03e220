#include "model/button_templates.h"

#include <algorithm>

#include "model/button_catalogue.h"
#include "model/limits.h"
#include "model/number_text.h"

namespace lumeth {

namespace {

bool IsTemplate(const PanelStore& store, int t) {
    return t >= 0 && t < store.templates.templateCount &&
           static_cast<size_t>(t) < store.templates.buttonTemplates.size() &&
           static_cast<size_t>(t) < store.templates.templateNames.size();
}

// Grow every per-template array to hold position `t` == templateCount and
// count it. The index pair may be shorter than the count after a file load
// (loading leaves it alone), so it is grown to the same length here.
void AppendTemplateSlot(PanelStore& store) {
    const int t = ValidCount(store.templates.templateCount);
    store.templates.templateCount = static_cast<int16_t>(t + 1);
    store.templates.Resize(t + 1);
    store.templates.templateIndex[static_cast<size_t>(t)] = static_cast<int16_t>(t);
    store.templates.templatePosition[static_cast<size_t>(t)] = static_cast<int16_t>(t);
    store.templates.buttonTemplates[static_cast<size_t>(t)] = ButtonTemplate{};
}

Status NoTemplate(int t, const char* what) {
    return Status::Fail(ErrorCode::SubscriptOutOfRange,
                        "no template " + std::to_string(t) + " " + what);
}

} // namespace

int AddButtonTemplate(PanelStore& store) {
    AppendTemplateSlot(store);
    const int t = store.templates.templateCount - 1;
    ButtonTemplate& tpl = store.templates.buttonTemplates[static_cast<size_t>(t)];
    tpl.buttonCount = kTemplateButtons;
    tpl.buttons.assign(kTemplateButtons, PanelButton::Cleared());
    for (int b = 0; b < kTemplateButtons; ++b)
        tpl.buttons[static_cast<size_t>(b)] = BlankTemplateButton(b);
    store.templates.templateNames[static_cast<size_t>(t)] = "Btn Tmplate " + ZeroPadded(t + 1, 3);
    return t;
}

PanelButton BlankTemplateButton(int b) {
    PanelButton button = PanelButton::Cleared();
    button.type = 40; // Source Select
    button.label = "Button " + std::to_string(b);
    return button;
}

PanelButton GrownButton(int b) {
    PanelButton button = PanelButton::Cleared();
    button.label = "Button " + std::to_string(b + 1);
    return button;
}

Status FillButtonTemplate(PanelStore& store, int t) {
    if (!IsTemplate(store, t)) {
        return NoTemplate(t, "to fill");
    }
    ButtonTemplate& tpl = store.templates.buttonTemplates[static_cast<size_t>(t)];
    if (tpl.buttonCount == kTemplateButtons) {
        return Status::Ok();
    }
    const int kept = std::clamp<int>(tpl.buttonCount, 0, kTemplateButtons);
    tpl.buttons.resize(kTemplateButtons, PanelButton::Cleared());
    for (int b = kept; b < kTemplateButtons; ++b)
        tpl.buttons[static_cast<size_t>(b)] = GrownButton(b);
    tpl.buttonCount = kTemplateButtons;
    return Status::Ok();
}

Status ClearButtonTemplate(PanelStore& store, int t) {
    if (!IsTemplate(store, t)) {
        return NoTemplate(t, "to clear");
    }
    ButtonTemplate& tpl = store.templates.buttonTemplates[static_cast<size_t>(t)];
    const int count = std::min<int>(tpl.buttonCount, static_cast<int>(tpl.buttons.size()));
    for (int b = 0; b < count; ++b) {
        PanelButton& button = tpl.buttons[static_cast<size_t>(b)];
        button.channel = kNoChannel;
        button.captionOption = 0;
        button.label = "Button " + std::to_string(b);
    }
    store.templates.templateNames[static_cast<size_t>(t)] = "Unused " + ZeroPadded(t + 1, 2);
    return Status::Ok();
}

Status DuplicateButtonTemplate(PanelStore& store, int from, int to) {
    if (!IsTemplate(store, from)) {
        return NoTemplate(from, "to copy from");
    }
    if (to < 0 || to > store.templates.templateCount) {
        return NoTemplate(to, "to copy onto");
    }
    if (to == store.templates.templateCount) {
        AppendTemplateSlot(store);
        ButtonTemplate& target = store.templates.buttonTemplates[static_cast<size_t>(to)];
        target.buttonCount = kPageButtons;
        target.buttons.assign(kPageButtons, PanelButton{});
        const std::vector<PanelButton>& source =
            store.templates.buttonTemplates[static_cast<size_t>(from)].buttons;
        for (size_t b = 0; b < kPageButtons; ++b) {
            if (b >= source.size()) {
                return Status::Fail(ErrorCode::SubscriptOutOfRange,
                                    "template " + std::to_string(from) + " has no button " +
                                        std::to_string(b));
            }
            target.buttons[b] = source[b];
        }
    }
    // Onto an existing template only the name is copied; its buttons stay.
    store.templates.templateNames[static_cast<size_t>(to)] =
        store.templates.templateNames[static_cast<size_t>(from)];
    return Status::Ok();
}

LabelSheetPage LabelSheetPageFor(const PanelStore& store, int t) {
    LabelSheetPage page;
    page.number = t + 1;
    page.keys.resize(kTemplateButtons);
    if (!IsTemplate(store, t)) {
        return page;
    }
    page.name = store.templates.templateNames[static_cast<size_t>(t)];
    const ButtonTemplate& tpl = store.templates.buttonTemplates[static_cast<size_t>(t)];
    const int count = std::min({static_cast<int>(tpl.buttonCount),
                                static_cast<int>(tpl.buttons.size()), kTemplateButtons});
    for (int b = 0; b < count; ++b) {
        const PanelButton& button = tpl.buttons[static_cast<size_t>(b)];
        LabelSheetKey& key = page.keys[static_cast<size_t>(b)];
        const ButtonFunction& function = ButtonFunctionOf(button.type);
        key.function = std::string(function.shortLabel);
        // The custom label as the upload sends it: at most 8 characters.
        key.face =
            button.usesCustomLabel()
                ? AsSent(button.label, kLabelWidth)
                : SystemButtonLabel(store, button.type, button.channel).substr(0, kLabelWidth);
        if (button.channel == kNoChannel || !function.channelSubType) {
            key.channel = "None";
            continue;
        }
        const std::vector<std::string>& names = store.alpha(*function.channelSubType).channelNames;
        if (button.channel >= 0 && static_cast<size_t>(button.channel) < names.size()) {
            key.channel = names[static_cast<size_t>(button.channel)];
        }
        key.number = ZeroPadded(button.channel + 1, 4);
    }
    return page;
}

} // namespace lumeth
