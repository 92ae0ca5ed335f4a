#include "frame/popup_layer.h"

#include <algorithm>

namespace tilika::frame::popup {

void placePanel(QWidget* layer, QFrame* panel, int height) {
    const QSize area = layer->size();
    const int width = area.width() < kPhoneWidth ? area.width() - 16 : kPanelWidth;
    const int h = std::min(height, area.height() - 16);
    panel->setGeometry((area.width() - width) / 2, (area.height() - h) / 2, width, h);
}

QFrame* makePanel(QWidget* layer) {
    auto* panel = new QFrame(layer);
    setTag(panel, kPopupPanelTag);
    panel->setObjectName(QStringLiteral("popupPanel"));
    panel->setStyleSheet(
        QStringLiteral("#popupPanel { background: #fbfaf7; border-radius: 14px; }"
                       "QLabel { color: #222; }"));
    return panel;
}

QLabel* captionLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    QFont font = label->font();
    font.setBold(true);
    font.setPixelSize(17);
    label->setFont(font);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return label;
}

QListWidget* wheel(const std::vector<std::string>& rows, int selected, QWidget* parent) {
    auto* list = new QListWidget(parent);
    for (const auto& row : rows) {
        list->addItem(QString::fromStdString(row));
    }
    list->setCurrentRow(selected);
    QFont font = list->font();
    font.setPixelSize(18);
    list->setFont(font);
    list->setMinimumHeight(180);
    list->scrollToItem(list->currentItem(), QAbstractItemView::PositionAtCenter);
    return list;
}

void DimLayer::setBlur(bool on) {
    blurred_ = QPixmap();
    if (on && parentWidget() != nullptr) {
        // Shrinking the picture and stretching it back blurs it, cheaply.
        const bool wasVisible = isVisible();
        hide();
        const QImage shot = parentWidget()->grab().toImage();
        if (wasVisible) {
            show();
        }
        const QImage small =
            shot.scaled(shot.size() / 10, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        blurred_ = QPixmap::fromImage(
            small.scaled(shot.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
    update();
}

}  // namespace tilika::frame::popup
