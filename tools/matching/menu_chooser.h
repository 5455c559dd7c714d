#pragma once

#include <QObject>
#include <QString>

namespace kestrune::matching {

// Chooses one entry of a context menu as soon as the menu shows, with the mouse.
class MenuChooser final : public QObject {
public:
    // Object names of the menu that is awaited and of the action in it.
    MenuChooser(QString menu, QString action);
    ~MenuChooser() override;
    MenuChooser(const MenuChooser&) = delete;
    MenuChooser& operator=(const MenuChooser&) = delete;
    MenuChooser(MenuChooser&&) = delete;
    MenuChooser& operator=(MenuChooser&&) = delete;

    // How often the entry has been chosen.
    [[nodiscard]] int chosen() const { return chosen_; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const QString menu_;
    const QString action_;
    int chosen_ = 0;
};

} // namespace kestrune::matching
