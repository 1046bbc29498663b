#pragma once

#include "ctl/arguments.h"
#include "ctl/device.h"
#include "update/refresh_job.h"

#include <optional>

namespace tidebrook {

/// The commands, each of which does its work, prints what it has to say and returns the exit
/// code. The number of operands is right already.
int runInit(const DeviceRoot &root);
int runCategories(CommandDevice &device, const Arguments &arguments);
int runAddCategory(CommandDevice &device, const Arguments &arguments);
int runRenameCategory(CommandDevice &device, const Arguments &arguments);
int runDeleteCategory(CommandDevice &device, const Arguments &arguments);
int runChannels(CommandDevice &device, const Arguments &arguments);
int runAdd(CommandDevice &device, const Arguments &arguments);
int runRename(CommandDevice &device, const Arguments &arguments);
int runMove(CommandDevice &device, const Arguments &arguments);
int runRelink(CommandDevice &device, const Arguments &arguments);
int runDelete(CommandDevice &device, const Arguments &arguments);
int runArticles(CommandDevice &device, const Arguments &arguments);
int runShow(CommandDevice &device, const Arguments &arguments);
int runSearch(CommandDevice &device, const Arguments &arguments);
int runMark(CommandDevice &device, const Arguments &arguments);
int runSave(CommandDevice &device, const Arguments &arguments);
int runImport(CommandDevice &device, const Arguments &arguments);
int runExport(CommandDevice &device, const Arguments &arguments);
int runUpdate(CommandDevice &device, const Arguments &arguments);
int runRequest(CommandDevice &device, const Arguments &arguments);
int runAuto(CommandDevice &device, const Arguments &arguments);
int runService(CommandDevice &device, const Arguments &arguments);
int runUpdates(CommandDevice &device, const Arguments &arguments);
int runSetting(CommandDevice &device, const Arguments &arguments);
int runCheck(CommandDevice &device, const Arguments &arguments);

/// Reports how one of the commands is used.
int failUse(const QString &command);

/// A category's name: as it is listed, else as it would be stored. Empty, and the failure is
/// reported, when nothing is left of it.
QString wantedCategory(CommandDevice &device, const QString &name);

/// Why a change failed, in words.
QString failureOf(const Device &device, ChangeEnd end);
/// The exit code of a change; a failure is reported.
int exitCodeOf(const Device &device, ChangeEnd end);

/// What refreshes a channel, which must be in that category. Nothing, and the failure is reported,
/// when there is none such.
std::optional<RefreshJob> jobOf(CommandDevice &device, const QString &category,
                                const QString &channel);

/// That the database failed, in words.
QString storeFailure(const Device &device);
/// Reports that the database failed.
int failStore(const Device &device);

} // namespace tidebrook
