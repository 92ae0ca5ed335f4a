#include "frame/page_bar.h"

#include <QToolButton>

#include "frame/elided_label.h"
#include "frame/look.h"
#include "frame/tab.h"

namespace tilika::frame {

PageBar readingBar(Tab* page, const core::AppState& state, std::string_view caption) {
    PageBar result;
    result.back = menuButton(page, state);
    auto* label = new ElidedLabel(translatedText(state, caption), page, 19, true);
    label->setObjectName(QStringLiteral("caption"));
    label->setAlignment(Qt::AlignCenter);
    result.caption = label;
    auto* balance = new QWidget(page);
    balance->setFixedWidth(44);
    result.bar = captionBar(result.back, nullptr, label, nullptr, balance, page);
    return result;
}

}  // namespace tilika::frame
