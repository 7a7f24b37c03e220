// Reading a configuration file once: what it holds, and putting it into a
// live store the way loading that file there does.
#include <gtest/gtest.h>

#include "files/configuration_file.h"
#include "files/json_document.h"
#include "files/panel_data_file.h"
#include "model/alpha_sort.h"
#include "tests/support/store_builders.h"
#include "tests/support/temp_folder.h"

namespace lumeth {
namespace {

// apply reads FILE once and then puts it into the downloaded store: that
// must leave exactly what loading the file into that store leaves (channel
// names kept unless a document brings its own, a panel data file keeping the
// template index pair).
TEST(ConfigurationFile, LoadingWhatWasReadIsLoadingTheFile) {
    const Configuration demo = ReadConfiguration(LUMETH_SOURCE_DIR "/demo/demo-panel.json");
    ASSERT_TRUE(demo.status) << demo.status.failure().detail;
    PanelStore live = demo.store;
    BuildAlphaTable(live.alpha(SubType::Input), {"DOWNLOADED"});
    live.templates.templateIndex.assign(live.templates.templateIndex.size(), 7);
    live.templates.templatePosition.assign(live.templates.templatePosition.size(), 9);

    JsonDocumentOptions withAlphas;
    withAlphas.includeAlphas = true;
    const struct {
        const char* name;
        std::string bytes;
        ConfigurationForm form;
    } files[] = {
        {"a.dat", EncodePanelData(demo.store), ConfigurationForm::PanelData},
        {"b.json", WriteJsonDocument(demo.store), ConfigurationForm::Json},
        {"c.json", WriteJsonDocument(demo.store, withAlphas), ConfigurationForm::Json},
    };
    test::TempFolder dir;
    for (const auto& file : files) {
        SCOPED_TRACE(file.name);
        dir.Write(file.name, file.bytes);
        const Configuration read = ReadConfiguration(dir.file(file.name));
        ASSERT_TRUE(read.status) << read.status.failure().detail;
        EXPECT_EQ(read.form, file.form);
        EXPECT_TRUE(read.RequireAllSections());
        PanelStore viaRead = live;
        LoadConfigurationInto(read, viaRead);
        PanelStore viaLoad = live;
        if (file.form == ConfigurationForm::PanelData) {
            ASSERT_EQ(LoadPanelData(file.bytes, viaLoad).outcome, LoadOutcome::Loaded);
        } else {
            viaLoad.ResetToDefaults();
            ASSERT_TRUE(ReadJsonDocument(file.bytes, viaLoad).status);
        }
        EXPECT_EQ(test::PartsOf(viaRead), test::PartsOf(viaLoad));
    }
}

} // namespace
} // namespace lumeth
