#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>

#include "files/json_document.h"
#include "files/panel_data_file.h"
#include "link/codec.h"
#include "model/store_check.h"
#include "tools/cli/cli_common.h"
#include "tools/cli/commands.h"
#include "tools/cli/password_input.h"
#include "tools/cli/server_client.h"

namespace lumeth::cli {

namespace {

// Load FILE into the live store the way the window's "Load All" does, so the
// store keeps what a load keeps (the downloaded channel names, the template
// index pair) and Apply sends exactly what the window would.
bool LoadIntoStore(const std::string& path, Document::Form form, PanelStore& store,
                   std::string& error) {
    std::ifstream in(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in && !in.eof()) {
        error = path + ": cannot read";
        return false;
    }
    if (form == Document::Form::PanelData) {
        const LoadResult result = LoadPanelData(bytes, store);
        if (result.outcome != LoadOutcome::Loaded) {
            error = path + ": " + result.status.failure().detail;
            return false;
        }
        return true;
    }
    store.ResetToDefaults();
    const JsonReadResult result = ReadJsonDocument(bytes, store);
    if (!result.status) {
        error = path + ": " + result.status.failure().detail;
        return false;
    }
    return true;
}

// Every value FILE holds must fit the 14-bit fields of the upload; a value
// that does not would make Apply leave that message out, so refuse the file
// before connecting instead.
bool CheckUploadable(const std::string& path, Document::Form form, std::string& error) {
    PanelStore scratch;
    if (!LoadIntoStore(path, form, scratch, error)) {
        return false;
    }
    for (const codec::Upload& upload : codec::UploadMessages(scratch)) {
        if (!upload.status) {
            error = path + ": cannot be sent: " + upload.status.failure().detail;
            return false;
        }
    }
    return true;
}

} // namespace

// apply FILE: log in and download like the window, replace the display lists,
// user groups and templates with FILE's, send them (six messages, 500 ms
// apart), read the whole configuration back and compare (unless
// --no-verify), then close the link.
int RunApply(const std::vector<std::string>& args) {
    ServerOptions options;
    std::vector<std::string> rest;
    std::string error;
    if (!ParseServerArguments(args, options, rest, error)) {
        return UsageError(error);
    }
    const bool verify = std::erase(rest, std::string("--no-verify")) == 0;
    // --force: send FILE even when check finds errors in it.
    const bool force = std::erase(rest, std::string("--force")) > 0;
    if (rest.size() != 1 || rest[0].starts_with("-")) {
        return UsageError("apply needs exactly one FILE");
    }
    const std::string& path = rest[0];
    // Check FILE before going near the server module.
    Document doc;
    if (!LoadDocument(path, doc, error) || !CheckUploadable(path, doc.form, error)) {
        return Error(ExitCode::BadInput, error);
    }
    // A section left out would empty that part on the server module.
    if (!doc.allSections) {
        return Error(ExitCode::BadInput, path + ": " + doc.allSections.failure().detail);
    }
    if (HasErrors(PrintChecks(doc, std::cerr)) && !force) {
        return Error(ExitCode::BadInput, path + ": not applied: check found errors (--force sends "
                                                "it anyway)");
    }
    const PasswordResult password = ReadPassword({options.passwordFile, "LUMETH_PASSWORD"});
    if (!password.password) {
        return UsageError(password.error);
    }

    ServerClient client(options);
    if (const int code = client.LogInAndDownload(PasswordBytes(*password.password)); code != 0) {
        return code;
    }
    if (!LoadIntoStore(path, doc.form, client.store(), error)) {
        client.Close();
        return Error(ExitCode::BadInput, error);
    }
    std::vector<codec::Upload> sent;
    int code = client.Apply(path, sent);
    if (code == 0 && verify) {
        code = client.VerifyApplied(path, sent);
    }
    client.Close();
    if (code != 0) {
        return code;
    }
    const PanelStore& store = client.store();
    std::cout << "applied " << path << " to " << options.host << ":" << options.port << ": "
              << DisplayListTotal(store) << " display lists, " << store.groups.userGroupCount
              << " user groups, " << store.templates.templateCount << " button templates"
              << (verify ? ", read back and identical\n" : " (not read back)\n");
    return ToInt(ExitCode::Ok);
}

} // namespace lumeth::cli
