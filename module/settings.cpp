// The settings caches of the process.
#include "module/settings.h"
#include "module/settingsdetail.h"

namespace qor::settings {

Cache& cache() {
    static Cache c;
    return c;
}

} // namespace qor::settings

void qorResetSettingsForTests() {
    qor::settings::cache() = qor::settings::Cache();
}
