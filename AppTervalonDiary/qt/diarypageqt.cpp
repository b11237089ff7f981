#include "AppTervalonDiary/qt/diarypageqt.h"

namespace Tervalon {

DiaryPageQt::DiaryPageQt(QWidget* parent)
    : QWidget(parent)
{
}

DiaryPageQt::~DiaryPageQt() = default;

void DiaryPageQt::set_selected(const ZBIdList&)
{
}

} // namespace Tervalon
