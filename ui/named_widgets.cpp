#include "ui/named_widgets.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace lumeth {

QPushButton* MakeButton(QWidget* parent, const char* name, const QString& caption,
                        const QString& tip) {
    auto* button = new QPushButton(caption, parent);
    if (name != nullptr)
        button->setObjectName(name);
    if (!tip.isEmpty())
        button->setToolTip(tip);
    button->setAutoDefault(false);
    return button;
}

QAction* MakeMenuAction(QWidget* menu, const char* name, const QString& caption) {
    auto* action = new QAction(caption, menu);
    action->setObjectName(name);
    menu->addAction(action);
    return action;
}

QLabel* MakeLabel(QWidget* parent, const char* name, const QString& caption) {
    auto* label = new QLabel(caption, parent);
    label->setObjectName(name);
    return label;
}

QHBoxLayout* ButtonRow(std::initializer_list<QPushButton*> buttons) {
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    for (QPushButton* button : buttons)
        row->addWidget(button);
    return row;
}

} // namespace lumeth
