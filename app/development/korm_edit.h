#pragma once

#include <QObject>
#include <QPointer>

#include <functional>
#include <optional>
#include <string>

#include "development/feeding.h"

class QWidget;

namespace tilika::core {
struct Context;
}
namespace tilika::diary {
class DayCloud;
class ReferenceLists;
}  // namespace tilika::diary
namespace tilika::frame {
class Popups;
class dic;
struct FormAnswer;
}  // namespace tilika::frame
namespace tilika::platform {
class QtPictures;
}

namespace tilika::development {

// What the feeding editor needs of the program.
struct KormEditServices {
    core::Context& context;
    const platform::QtPictures& pictures;
    frame::Popups& popups;
    diary::ReferenceLists* lists = nullptr;
    diary::DayCloud& cloud;
};

// The editor of one feeding: its moment, a row for each food, and "Новая
// запись" that offers the seven kinds. A food opens its own form; OK stores
// the whole feeding at once.
class kormEdit final : public QObject {
    Q_OBJECT

public:
    kormEdit(KormEditServices services, QWidget* host);
    ~kormEdit() override;

    // Opens the editor on the feeding; `onSaved` runs once it is stored.
    void prepare(KormEntry entry, const std::string& gid, std::function<void()> onSaved);

    // What the menu of "Новая запись" does with the kind it offered.
    void actionKorm(const QString& caption);
    // Opens the form of a food: a new one of the kind, or the food at `at`.
    void openFood(int tp, std::optional<std::size_t> at);

    const KormEntry& entry() const { return entry_; }
    // The editor and the form of a food, while they are up.
    frame::dic* form() const;
    frame::dic* foodForm() const;

private:
    void buildRows();
    bool answer(const frame::FormAnswer& answer);
    bool foodDone(int tp, std::optional<std::size_t> at, const frame::FormAnswer& answer);
    // Reads the moment from its row: the stored second is kept while the
    // minute shown is unchanged.
    void readMoment(const frame::FormAnswer& answer);
    void tell(const std::string& text, QWidget* over);

    KormEditServices services_;
    QPointer<QWidget> host_;
    QPointer<frame::dic> form_;
    QPointer<frame::dic> foodForm_;
    KormEntry entry_;
    std::string gid_;
    std::function<void()> onSaved_;
};

}  // namespace tilika::development
