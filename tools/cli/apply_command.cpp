#include <QDateTime>
#include <QThread>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>

#include "files/backup_files.h"
#include "files/check_report.h"
#include "files/configuration_file.h"
#include "files/user_data_folder.h"
#include "link/codec.h"
#include "model/cp1252.h"
#include "model/merge_plan.h"
#include "model/store_check.h"
#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"
#include "tools/cli/part_words.h"
#include "tools/cli/progress_line.h"
#include "tools/cli/server_arguments.h"
#include "tools/cli/server_client.h"

namespace lumeth::cli {

namespace {

// apply's own arguments, after the server options.
struct ApplyArguments {
    std::string file;
    bool verify = true;
    // Send FILE even when check finds errors in it (except those that block
    // sending) and over what the server module changed since BASE.
    bool force = false;
    PartSet only = kUploadParts;
    std::optional<std::string> base;
    std::optional<std::string> backupDir;
    bool backup = true;
};

Status ParseApplyArguments(const std::vector<std::string>& rest, ApplyArguments& parsed) {
    const auto usage = [](const std::string& message) {
        return Status::Fail(ErrorCode::InvalidProcedureCall, message);
    };
    bool onlyGiven = false;
    for (size_t i = 0; i < rest.size(); ++i) {
        const std::string& arg = rest[i];
        if (arg == "--no-verify") {
            parsed.verify = false;
        } else if (arg == "--force") {
            parsed.force = true;
        } else if (arg == "--no-backup") {
            parsed.backup = false;
        } else if (arg == "--only" || arg == "--base" || arg == "--backup-dir") {
            const bool repeated = arg == "--only"   ? onlyGiven
                                  : arg == "--base" ? parsed.base.has_value()
                                                    : parsed.backupDir.has_value();
            if (i + 1 >= rest.size() || repeated) {
                return usage("apply takes one " + arg + " value");
            }
            const std::string& value = rest[++i];
            if (arg == "--only") {
                onlyGiven = true;
                if (const Status words = ParsePartWords(value, arg, parsed.only); !words) {
                    return words;
                }
            } else {
                (arg == "--base" ? parsed.base : parsed.backupDir) = value;
            }
        } else if (arg.starts_with("-") || !parsed.file.empty()) {
            return usage("apply needs exactly one FILE");
        } else {
            parsed.file = arg;
        }
    }
    if (parsed.file.empty()) {
        return usage("apply needs exactly one FILE");
    }
    if (!parsed.backup && parsed.backupDir) {
        return usage("apply takes --backup-dir or --no-backup, not both");
    }
    return Status::Ok();
}

// Every value FILE holds in the parts sent must fit the 14-bit fields of the
// upload; a value that does not would make Apply leave that message out, so
// refuse the file before connecting instead.
Status CheckUploadable(const PanelStore& store, PartSet parts) {
    for (const codec::Upload& upload : codec::UploadMessages(store, parts)) {
        if (!upload.status) {
            return Status::Fail(upload.status.failure().code,
                                "cannot be sent: " + upload.status.failure().detail);
        }
    }
    return Status::Ok();
}

// What check found in FILE, told before connecting. With --verbose every
// line, as check prints them; otherwise only the errors that stop FILE from
// being sent (a file of many warnings is not hundreds of lines), then one
// line counting all of them.
void ReportChecks(const Configuration& doc, const std::vector<CheckFinding>& findings,
                  const std::string& path, bool force) {
    if (findings.empty()) {
        return;
    }
    const bool verbose = Progress().mode() == ProgressMode::Verbose;
    std::vector<CheckFinding> shown;
    for (const CheckFinding& finding : findings) {
        const bool stops =
            finding.blocksSending || (finding.severity == CheckFinding::Severity::Error && !force);
        if (verbose || stops) {
            shown.push_back(finding);
        }
    }
    for (const std::string& line : CheckReportLines(shown, doc.store)) {
        Progress().Line(cp1252::ToUtf8(line));
    }
    const bool allShown = shown.size() == findings.size();
    Progress().Line(path + ": " + CheckSummary(findings) +
                    (allShown ? "" : " (lumeth-cli check " + path + " lists them)"));
}


// A section left out of a part that is sent would empty that part on the
// server module; left out of BASE, it would look like a change.
Status RequireSections(const Configuration& config, PartSet parts) {
    Configuration held;
    held.form = config.form;
    held.version = config.version;
    held.sections = config.sections | (kUploadParts - parts);
    return held.RequireAllSections();
}

// Read and check FILE once, before going near the server module; 0 when it
// may be sent.
int CheckFile(const ApplyArguments& args, const Configuration& doc) {
    const std::string& path = args.file;
    if (!doc.status) {
        return InputError(path, doc.status);
    }
    if (const Status uploadable = CheckUploadable(doc.store, args.only); !uploadable) {
        return InputError(path, uploadable);
    }
    if (const Status held = RequireSections(doc, args.only); !held) {
        return InputError(path, held);
    }
    const std::vector<CheckFinding> findings = CheckConfiguration(doc);
    ReportChecks(doc, findings, path, args.force);
    // A damaged file or more than the messages carry: the server module would
    // end up with something else than FILE, so --force does not send it.
    if (BlocksSending(findings)) {
        return Error(ExitCode::BadInput,
                     path + ": not applied: the file is damaged or holds more than the "
                            "messages carry (--force does not send it)");
    }
    if (HasErrors(findings) && !args.force) {
        return Error(ExitCode::BadInput, path + ": not applied: check found errors (--force sends "
                                                "it anyway)");
    }
    return 0;
}

// The parts to send of what the server module holds now: without BASE every
// part asked for; with it, none that the server module changed since BASE
// unless forced. A conflict prints one line per part and returns exit code 8.
int PlanSend(const ApplyArguments& args, const Configuration* base, const PanelStore& server,
             const PanelStore& mine, PartSet& toSend) {
    toSend = args.only;
    if (base == nullptr) {
        return 0;
    }
    const MergePlan plan = PlanMerge(base->store, server, mine, args.only, args.force);
    toSend = plan.toSend;
    if (args.force) {
        ForEachPart(plan.conflicts | plan.keptServer, [&](Part part) {
            Progress().Line("overwriting (--force): " + ServerChangedLine(part, *args.base));
        });
        return 0;
    }
    if (!plan.conflicts.empty()) {
        ForEachPart(plan.conflicts, [&](Part part) {
            Progress().Line("lumeth-cli: " + ServerChangedLine(part, *args.base));
        });
        return Error(ExitCode::Conflict, "nothing was sent: " + args.file +
                                             " changes those parts too (--force sends it anyway)");
    }
    ForEachPart(plan.keptServer, [&](Part part) {
        Progress().Line("kept: " + ServerChangedLine(part, *args.base) + "; not sent");
    });
    return 0;
}

// Keep what the server module holds in a new backup before anything is sent;
// 0, or exit code 7 when it cannot be written.
int KeepBackup(const ApplyArguments& args, const PanelStore& server) {
    if (!args.backup) {
        return 0;
    }
    const std::string dir = args.backupDir.value_or(UserDataFolder() + kBackupFolder);
    // One file per apply: a stamp already taken (an apply within the same
    // second) waits for the next second rather than replacing that backup.
    std::string stamp;
    for (int tries = 0; tries < 20; ++tries) {
        stamp = QDateTime::currentDateTime().toString("yyyyMMdd-HHmmss").toStdString();
        if (!std::filesystem::exists(std::filesystem::path(dir) / BackupFileName(stamp))) {
            break;
        }
        QThread::msleep(100);
    }
    std::string written;
    if (const Status kept = WriteBackupInto(dir, stamp, server, &written); !kept) {
        return Error(ExitCode::WriteFailed,
                     "nothing was sent: cannot keep the server module's configuration in " + dir +
                         ": " + kept.failure().detail);
    }
    Progress().Step("kept the server module's configuration in " + written);
    return 0;
}

// Log in, plan, back up, send and read back; the link is closed on return.
int SendFile(ServerClient& client, const ApplyArguments& args, const Configuration& doc,
             const Configuration* base, PartSet& sentParts) {
    // The login's download is what the server module holds now: the merge
    // plan and the backup both work from it, without asking twice.
    PartSet toSend;
    if (const int code = PlanSend(args, base, client.store(), doc.store, toSend); code != 0) {
        return code;
    }
    sentParts = toSend;
    if (toSend.empty()) {
        return 0;
    }
    if (const int code = KeepBackup(args, client.store()); code != 0) {
        return code;
    }
    // FILE goes into the live store the way the window's "Load All" puts it
    // there, so the store keeps what a load keeps (the downloaded channel
    // names, the template index pair) and Apply sends exactly what the window
    // would.
    LoadConfigurationInto(doc, client.store());
    std::vector<codec::Upload> sent;
    int code = client.Apply(args.file, sent, toSend);
    if (code == 0 && args.verify) {
        code = client.VerifyApplied(args.file, doc.store, toSend);
    }
    return code;
}

void PrintApplied(const ApplyArguments& args, const ServerOptions& options, const PanelStore& store,
                  PartSet sent) {
    std::string line = "applied " + args.file + " to " + options.host + ":" +
                       std::to_string(options.port) + ": ";
    if (sent == kUploadParts) {
        line += std::to_string(DisplayListTotal(store)) + " display lists, " +
                std::to_string(store.groups.userGroupCount) + " user groups, " +
                std::to_string(store.templates.templateCount) + " button templates";
    } else {
        line += JoinPartNames(sent);
    }
    PrintResult(line + (args.verify ? ", read back and identical" : " (not read back)"));
}

} // namespace

// apply FILE: log in and download like the window, keep what the server
// module held in a backup, replace the display lists, user groups and
// templates (or the --only parts) with FILE's, send them (500 ms apart),
// read the whole configuration back and compare the parts sent (unless
// --no-verify), then close the link. With --base, parts the server module
// changed since BASE are not sent over.
int RunApply(const std::vector<std::string>& argv) {
    ServerOptions options;
    std::vector<std::string> rest;
    if (const Status parsed = ParseServerOptions(argv, options, rest); !parsed) {
        return UsageError(parsed.failure().detail);
    }
    ApplyArguments args;
    if (const Status parsed = ParseApplyArguments(rest, args); !parsed) {
        return UsageError(parsed.failure().detail);
    }
    const Configuration doc = ReadConfiguration(args.file);
    if (const int code = CheckFile(args, doc); code != 0) {
        return code;
    }
    std::optional<Configuration> base;
    if (args.base) {
        base = ReadConfiguration(*args.base);
        const Status held = base->status ? RequireSections(*base, args.only) : base->status;
        if (!held) {
            return InputError(*args.base, held);
        }
    }
    ServerClient client(options);
    if (const int code = client.LogInAndDownload(); code != 0) {
        return code;
    }
    PartSet sent;
    const int code = SendFile(client, args, doc, base ? &*base : nullptr, sent);
    client.Close();
    if (code != 0) {
        return code;
    }
    if (sent.empty()) {
        PrintResult("nothing sent from " + args.file + ": the server module changed every part " +
                    "it would send since " + *args.base);
        return ToInt(ExitCode::Ok);
    }
    PrintApplied(args, options, client.store(), sent);
    return ToInt(ExitCode::Ok);
}

} // namespace lumeth::cli
