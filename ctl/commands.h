#pragma once

#include "ctl/arguments.h"
#include "ctl/device.h"
#include "update/channel_changes.h"
#include "update/refresh_job.h"

#include <optional>

namespace tidebrook {

/// The commands, each of which does its work, prints what it has to say and returns the exit
/// code. The number of operands is right already.
int runInit(const DeviceRoot &root);
int runCategories(Device &device, const Arguments &arguments);
int runAddCategory(Device &device, const Arguments &arguments);
int runRenameCategory(Device &device, const Arguments &arguments);
int runDeleteCategory(Device &device, const Arguments &arguments);
int runChannels(Device &device, const Arguments &arguments);
int runAdd(Device &device, const Arguments &arguments);
int runRename(Device &device, const Arguments &arguments);
int runMove(Device &device, const Arguments &arguments);
int runRelink(Device &device, const Arguments &arguments);
int runDelete(Device &device, const Arguments &arguments);
int runArticles(Device &device, const Arguments &arguments);
int runShow(Device &device, const Arguments &arguments);
int runMark(Device &device, const Arguments &arguments);
int runSave(Device &device, const Arguments &arguments);
int runImport(Device &device, const Arguments &arguments);
int runExport(Device &device, const Arguments &arguments);
int runUpdate(Device &device, const Arguments &arguments);
int runRequest(Device &device, const Arguments &arguments);
int runAuto(Device &device, const Arguments &arguments);
int runService(Device &device, const Arguments &arguments);
int runUpdates(Device &device, const Arguments &arguments);
int runSetting(Device &device, const Arguments &arguments);
int runCheck(Device &device, const Arguments &arguments);

/// The name of a category as the list has it, made if it is missing. Empty, with the failure told,
/// when it cannot be made.
QString ensureCategory(Device &device, const QString &name);

/// Why a channel cannot be stored under this storable name or with this address; null when it can.
QString refusalOf(const QString &name, const QString &link);
/// Adds a channel that can be stored to a listed category. The name under which it was stored;
/// null, with the reason, when it was not.
QString subscribe(Device &device, const ChannelRecord &channel, QString *reason);

/// The title of an article as it is stored, for one that was copied from the list, where tabs and
/// line ends are blanks.
QString listedTitle(Device &device, const QString &channel, const QString &title);

/// What refreshes a channel, which must be in that category. Nothing, with the failure told, when
/// there is none such.
std::optional<RefreshJob> jobOf(Device &device, const QString &category, const QString &channel);

/// The exit code of a change of channels; a failure is told.
int toldEnd(Device &device, ChannelChange end);

/// That the database failed, in words.
QString storeFailure(const Device &device);
/// Tells that the database failed.
int failStore(const Device &device);

} // namespace tidebrook
