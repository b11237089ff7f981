#include "LibDatabase/qt/zbcloudbuttonqt.h"

#include <QIcon>

namespace Tervalon {

ZBCloudButtonQt::ZBCloudButtonQt(QWidget* parent) : QToolButton(parent)
{
    setObjectName("cloudButton");
    setText("Push to Cloud");
    setToolButtonStyle(Qt::ToolButtonIconOnly);
    update_state(E_None, false);
}

ZBCloudButtonQt::~ZBCloudButtonQt() = default;

const char* ZBCloudButtonQt::icon_for(int state, bool pushWaiting)
{
    switch (state) {
    case E_Ok:
        return pushWaiting ? ":/LibGui/images/32/CloudPush.png" : ":/LibGui/images/32/CloudOK.png";
    case E_Up:
        return ":/LibGui/images/32/CloudUp.png";
    case E_Down:
        return ":/LibGui/images/32/CloudDown.png";
    case E_Init:
        return ":/LibGui/images/32/CloudInit.png";
    default:
        return ":/LibGui/images/32/CloudOff.png";
    }
}

void ZBCloudButtonQt::update_state(int state, bool pushWaiting)
{
    if (state == m_state && pushWaiting == m_pushWaiting)
        return;
    m_state = state;
    m_pushWaiting = pushWaiting;
    setIcon(QIcon(icon_for(state, pushWaiting)));
    setEnabled(state >= E_Off);
    switch (state) {
    case E_None:
        setToolTip("Cloud service not available.");
        break;
    case E_Off:
        setToolTip("Push to Cloud: the cloud service is off.");
        break;
    case E_Init:
        setToolTip("Push to Cloud: connecting to the cloud service...");
        break;
    case E_Down:
        setToolTip("Push to Cloud: receiving changes from other devices...");
        break;
    case E_Up:
        setToolTip("Push to Cloud: sending changes to other devices...");
        break;
    default:
        setToolTip(pushWaiting ? "Push to Cloud: changes are waiting to be sent." : "Push to Cloud: up to date.");
        break;
    }
}

} // namespace Tervalon
