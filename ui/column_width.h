#pragma once

namespace tidebrook {

class ListView;
class ScreenStack;

/// Makes a list's rows two pixels narrower than the screen and, with more rows than fit without a
/// scroll bar, narrower by that too.
void fitColumn(ListView &list, const ScreenStack &stack);

} // namespace tidebrook
