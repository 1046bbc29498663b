#include "platform/base/name_order.h"

namespace tidebrook {

QCollator nameOrder() {
    QCollator order;
    if (order.locale().language() == QLocale::C) // which sorts by codes
        order.setLocale(QLocale(QLocale::English));
    order.setNumericMode(true);
    order.setCaseSensitivity(Qt::CaseInsensitive);
    return order;
}

} // namespace tidebrook
