#include <algorithm>

#include "files/check_report.h"
#include "files/configuration_file.h"
#include "link/codec.h"
#include "model/cp1252.h"
#include "model/store_check.h"
#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"
#include "tools/cli/password_input.h"
#include "tools/cli/progress_line.h"
#include "tools/cli/server_arguments.h"
#include "tools/cli/server_client.h"

namespace lumeth::cli {

namespace {

// Every value FILE holds must fit the 14-bit fields of the upload; a value
// that does not would make Apply leave that message out, so refuse the file
// before connecting instead.
Status CheckUploadable(const PanelStore& store) {
    for (const codec::Upload& upload : codec::UploadMessages(store)) {
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

} // namespace

// apply FILE: log in and download like the window, replace the display lists,
// user groups and templates with FILE's, send them (six messages, 500 ms
// apart), read the whole configuration back and compare (unless
// --no-verify), then close the link.
int RunApply(const std::vector<std::string>& args) {
    ServerOptions options;
    std::vector<std::string> rest;
    if (const Status parsed = ParseServerOptions(args, options, rest); !parsed) {
        return UsageError(parsed.failure().detail);
    }
    const bool verify = std::erase(rest, std::string("--no-verify")) == 0;
    // --force: send FILE even when check finds errors in it, except those
    // that block sending.
    const bool force = std::erase(rest, std::string("--force")) > 0;
    if (rest.size() != 1 || rest[0].starts_with("-")) {
        return UsageError("apply needs exactly one FILE");
    }
    const std::string& path = rest[0];
    // Read and check FILE once, before going near the server module.
    const Configuration doc = ReadConfiguration(path);
    if (!doc.status) {
        return InputError(path, doc.status);
    }
    if (const Status uploadable = CheckUploadable(doc.store); !uploadable) {
        return InputError(path, uploadable);
    }
    // A section left out would empty that part on the server module.
    if (const Status all = doc.RequireAllSections(); !all) {
        return InputError(path, all);
    }
    const std::vector<CheckFinding> findings = CheckConfiguration(doc);
    ReportChecks(doc, findings, path, force);
    // A damaged file or more than the messages carry: the server module would
    // end up with something else than FILE, so --force does not send it.
    if (BlocksSending(findings)) {
        return Error(ExitCode::BadInput,
                     path + ": not applied: the file is damaged or holds more than the "
                            "messages carry (--force does not send it)");
    }
    if (HasErrors(findings) && !force) {
        return Error(ExitCode::BadInput, path + ": not applied: check found errors (--force sends "
                                                "it anyway)");
    }
    const PasswordResult password = ReadPassword({options.passwordFile, "LUMETH_PASSWORD"});
    if (!password.password) {
        return Error(ExitCode::Usage, password.status.failure().detail);
    }

    ServerClient client(options);
    if (const int code = client.LogInAndDownload(PasswordBytes(*password.password)); code != 0) {
        return code;
    }
    // FILE goes into the live store the way the window's "Load All" puts it
    // there, so the store keeps what a load keeps (the downloaded channel
    // names, the template index pair) and Apply sends exactly what the window
    // would.
    LoadConfigurationInto(doc, client.store());
    std::vector<codec::Upload> sent;
    int code = client.Apply(path, sent);
    if (code == 0 && verify) {
        code = client.VerifyApplied(path, doc.store);
    }
    client.Close();
    if (code != 0) {
        return code;
    }
    const PanelStore& store = client.store();
    PrintResult("applied " + path + " to " + options.host + ":" + std::to_string(options.port) +
                ": " + std::to_string(DisplayListTotal(store)) + " display lists, " +
                std::to_string(store.groups.userGroupCount) + " user groups, " +
                std::to_string(store.templates.templateCount) + " button templates" +
                (verify ? ", read back and identical" : " (not read back)"));
    return ToInt(ExitCode::Ok);
}

} // namespace lumeth::cli
