#include "res/about.h"

#include "res/strings.h"

namespace tidebrook {

QString aboutText() {
    return resourceString(programNameString) + u" " TIDEBROOK_VERSION "\n\n" +
           u"A news-feed reader for pocket devices and desktops.\n\n"
           u"\u00a9 2026 The Tidebrook authors.\n"
           u"Free software under the MIT licence, without any warranty.";
}

} // namespace tidebrook
