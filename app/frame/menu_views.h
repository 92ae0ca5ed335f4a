#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QImage>
#include <QWidget>

#include <string>
#include <vector>

#include "core/menu_rows.h"
#include "session/menu_blocks.h"

class QLabel;

namespace tilika::platform {
class QtPictures;
}

// The pieces the main menu is drawn from: its rows, its buttons, its
// switches and a child's block.
namespace tilika::frame::menu {

// How the menu draws over the current background.
struct Look {
    QColor text;
    QColor card;  // the translucent card under blocks and rows
    bool lightTheme = true;
    bool colorIcons = true;
};

// A row that opens something: its picture, its name (and the comment under
// it, when there is one), a badge with its count, and an arrow. A row
// without a name shows its comment alone.
class RowView final : public QAbstractButton {
    Q_OBJECT

public:
    RowView(const core::MenuRow& row, const platform::QtPictures& pictures, const Look& look,
            QWidget* parent);
    const core::MenuRow& row() const { return row_; }
    // The badge's text; empty when the row has none.
    QString badgeText() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    core::MenuRow row_;
    QLabel* badge_ = nullptr;
};

// A whole-width button on a picture: the grey action rows of a child, and
// the orange row that adds one.
class PictureButton final : public QAbstractButton {
    Q_OBJECT

public:
    PictureButton(const core::MenuRow& row, std::string picture, QColor text,
                  const platform::QtPictures& pictures, QWidget* parent);
    const core::MenuRow& row() const { return row_; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    core::MenuRow row_;
    std::string picture_;
    QColor textColor_;
    const platform::QtPictures& pictures_;
};

// A setting: its text and the switch that is its state.
class SwitchRow final : public QWidget {
    Q_OBJECT

public:
    SwitchRow(const core::MenuRow& row, const Look& look, QWidget* parent);
    QAbstractButton* toggle() const { return switch_; }

private:
    QAbstractButton* switch_;
};

// A child's block: the round photo with the sign of a boy or a girl, the
// name, the birth date and the age; under them the child's rows, shown when
// the block is open. The upper part is one transparent button.
class ChildBlockView final : public QWidget {
    Q_OBJECT

public:
    ChildBlockView(const session::ChildBlock& block, const platform::QtPictures& pictures,
                   const Look& look, QWidget* parent);
    const std::string& guid() const { return guid_; }
    QAbstractButton* circle() const { return circle_; }
    // The views of the child's rows, in order.
    const std::vector<QAbstractButton*>& rowViews() const { return rows_; }
    void setRowsShown(bool shown);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    std::string guid_;
    QColor card_;
    QAbstractButton* circle_;
    QWidget* photo_;
    QLabel* sex_;
    QLabel* name_;
    QLabel* birth_;
    QLabel* age_;
    QLabel* day_;  // the sign beside the age
    std::vector<QAbstractButton*> rows_;
};

// A translucent card with rounded corners, for rows that stand on the
// background.
class Card final : public QWidget {
    Q_OBJECT

public:
    Card(QColor color, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor color_;
};

}  // namespace tilika::frame::menu
