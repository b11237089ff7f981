#pragma once

#include <QToolButton>

namespace Tervalon {

// The tool button that shows how the file stands with the cloud service and
// sends waiting changes when pressed. Owned by its database window, which
// tells it of every change of state.
class ZBCloudButtonQt : public QToolButton {
    Q_OBJECT
public:
    enum E_State { E_None = -1, E_Off = 0, E_Init = 1, E_Down = 2, E_Up = 3, E_Ok = 4 };

    explicit ZBCloudButtonQt(QWidget* parent = nullptr);
    ~ZBCloudButtonQt() override;

    // state is the service's: -1 none, 0 off, 1 starting, 2 receiving, 3 sending, 4 connected.
    void update_state(int state, bool pushWaiting);
    // The icon of a state, as a resource path.
    static const char* icon_for(int state, bool pushWaiting);
    int get_state() const { return m_state; }

private:
    int m_state = -2;
    bool m_pushWaiting = false;
};

} // namespace Tervalon
