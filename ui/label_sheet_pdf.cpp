#include "ui/label_sheet_pdf.h"

#include <QBuffer>
#include <QFontMetrics>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>

#include <algorithm>
#include <numeric>

#include "files/file_io.h"
#include "model/button_templates.h"
#include "model/limits.h"
#include "ui/qt_text.h"

namespace lumeth {

namespace {

constexpr int kResolution = 300; // dots per inch of the page's coordinates
constexpr int kKeysPerRow = 16;

double Mm(double millimetres) {
    return millimetres * kResolution / 25.4;
}

// `font`, or a copy set smaller until `value` fits `width` on `device`: the
// sheet prints every text whole, as the panel shows it.
QFont FittedFont(const QFont& font, const QString& value, double width, QPaintDevice* device) {
    constexpr double kSmallest = 1.0; // points; no text of a key gets near it
    QFont fitted = font;
    double shown = QFontMetricsF(fitted, device).horizontalAdvance(value);
    while (shown > width && fitted.pointSizeF() > kSmallest) {
        // The advance does not scale exactly with the size (hinting), so
        // measure again after each step.
        fitted.setPointSizeF(std::max(kSmallest, fitted.pointSizeF() * width / shown * 0.98));
        shown = QFontMetricsF(fitted, device).horizontalAdvance(value);
    }
    return fitted;
}

// One key: its position number, then the face text the operator reads on the
// panel, the function, and the channel it switches.
void DrawKey(QPainter& painter, const QRectF& box, int number, const LabelSheetKey& key,
             const QFont& small, const QFont& face) {
    painter.setPen(QPen(Qt::black, Mm(0.25)));
    painter.drawRect(box);
    const QRectF inner = box.adjusted(Mm(0.8), Mm(0.6), -Mm(0.8), -Mm(0.6));
    const double line = inner.height() / 6.0;
    const auto row = [&](int at, int span) {
        return QRectF(inner.left(), inner.top() + at * line, inner.width(), span * line);
    };
    const auto text = [&](const QRectF& rect, const QFont& font, const QString& value,
                          Qt::Alignment align) {
        // Names come blank-padded to their table's width; centred with the
        // padding they would sit left of the key's middle.
        const QString shown = value.trimmed();
        painter.setFont(FittedFont(font, shown, rect.width(), painter.device()));
        painter.drawText(rect, align | Qt::AlignVCenter | Qt::TextDontClip, shown);
    };
    painter.setPen(Qt::darkGray);
    text(row(0, 1), small, QString::number(number), Qt::AlignLeft);
    painter.setPen(Qt::black);
    text(row(1, 2), face, ToQt(key.face), Qt::AlignHCenter);
    text(row(3, 1), small, ToQt(key.function), Qt::AlignHCenter);
    text(row(4, 1), small, ToQt(key.channel), Qt::AlignHCenter);
    text(row(5, 1), small, ToQt(key.number), Qt::AlignHCenter);
}

struct SheetFonts {
    QFont heading;
    QFont caption;
    QFont small;
    QFont face;
};

SheetFonts MakeSheetFonts() {
    SheetFonts fonts{QFont("Sans Serif"), QFont("Sans Serif"), QFont("Sans Serif"),
                     QFont("Sans Serif")};
    fonts.heading.setPointSizeF(16);
    fonts.heading.setBold(true);
    fonts.caption.setPointSizeF(9);
    fonts.small.setPointSizeF(5.5);
    fonts.face.setPointSizeF(6.5);
    fonts.face.setBold(true);
    return fonts;
}

// One template's page: its number and name, its 32 keys in two rows of 16,
// and a footer that says what each line of a key means and where the page
// belongs.
void DrawPage(QPainter& painter, const QRectF& page, const LabelSheetPage& sheet, int pageNumber,
              int pageCount, const SheetFonts& fonts) {
    const double width = page.width();
    const double gap = Mm(1.2);
    const double keyWidth = (width - gap * (kKeysPerRow - 1)) / kKeysPerRow;
    const double keyHeight = Mm(34);
    painter.setPen(Qt::black);
    painter.setFont(fonts.heading);
    painter.drawText(QRectF(0, 0, width, Mm(10)), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("Template %1  %2")
                         .arg(sheet.number, 2, 10, QLatin1Char('0'))
                         .arg(ToQt(sheet.name).trimmed()));
    double top = Mm(16);
    for (int r = 0; r < 2; ++r) {
        painter.setFont(fonts.caption);
        painter.setPen(Qt::black);
        painter.drawText(QRectF(0, top, width, Mm(6)), Qt::AlignLeft | Qt::AlignVCenter,
                         r == 0 ? QStringLiteral("Buttons 1-16") : QStringLiteral("Buttons 17-32"));
        top += Mm(7);
        for (int k = 0; k < kKeysPerRow; ++k) {
            const int b = r * kKeysPerRow + k;
            const QRectF box(k * (keyWidth + gap), top, keyWidth, keyHeight);
            DrawKey(painter, box, b + 1, sheet.keys[static_cast<size_t>(b)], fonts.small,
                    fonts.face);
        }
        top += keyHeight + Mm(10);
    }
    painter.setFont(fonts.caption);
    painter.setPen(Qt::darkGray);
    const QRectF footer(0, page.height() - Mm(8), width, Mm(8));
    painter.drawText(footer, Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("Each key: button number, face text, function, "
                                    "channel name, channel number"));
    painter.drawText(footer, Qt::AlignRight | Qt::AlignVCenter,
                     QStringLiteral("Page %1 of %2").arg(pageNumber).arg(pageCount));
}

} // namespace

std::vector<int> AllTemplatePositions(const PanelStore& store) {
    std::vector<int> positions(static_cast<size_t>(ValidCount(store.templates.templateCount)));
    std::iota(positions.begin(), positions.end(), 0);
    return positions;
}

QByteArray RenderLabelSheet(const PanelStore& store, const std::vector<int>& templates) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setTitle("Button Label Sheet");
    writer.setCreator("KOV Lumeth EX Administrator");
    writer.setResolution(kResolution);
    writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Landscape,
                                     QMarginsF(10, 10, 10, 10), QPageLayout::Millimeter));

    QPainter painter(&writer);
    const SheetFonts fonts = MakeSheetFonts();
    const QRectF page = writer.pageLayout().paintRectPixels(kResolution);
    const int count = static_cast<int>(templates.size());
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            writer.newPage();
        DrawPage(painter, page, LabelSheetPageFor(store, templates[static_cast<size_t>(i)]), i + 1,
                 count, fonts);
    }
    painter.end();
    return bytes;
}

Status WriteLabelSheet(const std::string& path, const PanelStore& store,
                       const std::vector<int>& templates) {
    const QByteArray bytes = RenderLabelSheet(store, templates);
    if (bytes.isEmpty())
        return Status::Fail(ErrorCode::DeviceIoError, "the label sheet could not be drawn");
    return ReplaceFileContents(path, std::string_view(bytes.constData(), bytes.size()));
}

} // namespace lumeth
