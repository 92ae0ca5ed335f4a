#pragma once

#include <QWidget>

#include <string>

namespace tilika::frame {

// A content page of the root screen: one of the sections a child's menu
// block leads to. The pager asks a page to load a child's data when it is
// marked for reloading, and tells it when it comes on top.
class Tab : public QWidget {
    Q_OBJECT

public:
    Tab(int pageId, QWidget* parent) : QWidget(parent), pageId_(pageId) {}

    int pageId() const { return pageId_; }

    // Loads the page for the child with this guid.
    virtual void activateView(const std::string& gid) = 0;
    // The page has come on top.
    virtual void activate() {}

signals:
    // The page's own buttons ask the pager to move.
    void menuRequested();
    void nextPageRequested();

private:
    int pageId_;
};

}  // namespace tilika::frame
