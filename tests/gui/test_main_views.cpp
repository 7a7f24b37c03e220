// The main window's views, built from stores made here: the sub type choice,
// channel texts and bounds, and the failure reports. No network; clicks and
// the rest of the views are driven in the window flows.
#include <QLabel>
#include <QTest>
#include <QTreeWidget>
#include <QWidget>

#include "app/main_views.h"
#include "model/alpha_sort.h"
#include "model/view_keys.h"
#include "tests/support/store_builders.h"

using namespace lumeth;

namespace {

struct Report {
    std::string location;
    std::string category;
};

using test::Group;
using test::List;

// A small facility. Input channels in channel order: MIC 1, MIC 2, CD; sorted
// by name that is CD (2), MIC 1 (0), MIC 2 (1).
PanelStore Facility() {
    PanelStore store;
    BuildAlphaTable(store.alpha(SubType::Input), {"MIC 1", "MIC 2", "CD"});
    BuildAlphaTable(store.alpha(SubType::Output), {"PGM", "AUX"});
    // Four opto names although the Input table has only three channels.
    BuildAlphaTable(store.alpha(SubType::Opto), {"ON AIR", "FADER", "COUGH", "TALK"});

    store.listCount(SubType::Input) = 3;
    store.lists(SubType::Input) = {List("Mics", {0, 1}), List("Players", {2}),
                                   List("Everything", {0, 1, 2, 100})};
    store.listCount(SubType::Output) = 2;
    store.lists(SubType::Output) = {List("Main", {0}), List("Aux", {1})};
    store.listCount(SubType::Opto) = 1;
    store.lists(SubType::Opto) = {List("Lights", {0, 2, 3})};
    store.listCount(SubType::Relay) = 1;
    store.lists(SubType::Relay) = {List("Tally", {0, 1, 2})};

    store.groups.userGroupCount = 4;
    store.groups.userGroupNames = {"Studio A", "Newsroom", "Tally Only", "Empty"};
    store.groups.userGroups = {Group({{0, 11}, {1, 21}, {2, 11}}), Group({{0, 31}, {0, 21}}),
                               Group({{0, 41}}), Group({})};
    store.groups.userGroupIndex = {0, 1, 2, 3};
    store.groups.userGroupNumber = {0, 1, 2, 3};
    return store;
}

QStringList Column(QTreeWidget* view, int column) {
    QStringList texts;
    for (int i = 0; i < view->topLevelItemCount(); ++i)
        texts << view->topLevelItem(i)->text(column);
    return texts;
}

QStringList Keys(QTreeWidget* view) {
    QStringList keys;
    for (int i = 0; i < view->topLevelItemCount(); ++i)
        keys << MainViews::ItemKey(view->topLevelItem(i));
    return keys;
}

} // namespace

class MainViewsTest : public QObject {
    Q_OBJECT

private:
    PanelStore m_store;
    std::vector<Report> m_reports;
    QWidget* m_host = nullptr;
    MainViews* m_views = nullptr;

private slots:
    void init() {
        m_store = Facility();
        m_reports.clear();
        m_host = new QWidget;
        m_views = new MainViews(
            m_store,
            [this](std::string_view location, std::string_view category, const Failure&) {
                m_reports.push_back({std::string(location), std::string(category)});
            },
            m_host);
    }
    void cleanup() { delete m_host; }

    void subTypeChoicePrefersInputThenOutputOptoRelay() {
        const std::pair<int, int16_t> cases[] = {
            {0, 11}, // Input first although an Output list is in between
            {1, 21}, // Opto entry comes first, Output still wins
            {2, 41}, // only Relay lists
            {3, 11}, // no entries at all
        };
        for (auto [group, expected] : cases) {
            m_store.currentListType = 99;
            m_store.currentUserGroup = static_cast<int16_t>(group);
            m_views->DetermineSubType();
            QCOMPARE(m_store.currentListType, expected);
        }
        QVERIFY(m_reports.empty());
    }

    void channelItemsShowAlphaAndInvalidAboveTheBound() {
        m_store.currentListType = 11;
        m_views->ShowDisplayListData(2);
        QCOMPARE(Column(m_views->items(), 0), QStringList({"MIC 1 (Ch.0001)", "MIC 2 (Ch.0002)",
                                                           "CD (Ch.0003)", "*Invalid* (Ch.0101)"}));
        QCOMPARE(Keys(m_views->items()), QStringList({"Ch.0001", "Ch.0002", "Ch.0003", "Ch.0101"}));
        QCOMPARE(m_views->caption(2)->text(), QString("Items in Everything"));

        // An unknown list type shows nothing, and the caption stays.
        m_store.currentListType = 12;
        m_views->ShowDisplayListData(0);
        QCOMPARE(m_views->items()->topLevelItemCount(), 0);
        QCOMPARE(m_views->caption(2)->text(), QString("Items in Everything"));
        QVERIFY(m_reports.empty());
    }

    void optoAndRelayListsUseTheInputAndOutputBounds() {
        // Opto channel 3 exists in the Opto table but not below the Input count 3.
        m_store.currentListType = 31;
        m_views->ShowDisplayListData(0);
        QCOMPARE(Column(m_views->items(), 0),
                 QStringList({"ON AIR (Ch.0001)", "COUGH (Ch.0003)", "*Invalid* (Ch.0004)"}));

        // Relay channels are bounded by the two Outputs; the Relay table is
        // empty, so channel 0 below that bound is a fault of the data.
        m_store.currentListType = 41;
        m_views->ShowDisplayListData(0);
        QCOMPARE(m_reports.size(), size_t(1));
        QCOMPARE(m_reports[0].location, std::string("Error Loading Group Items"));
        QCOMPARE(m_reports[0].category, std::string("Display Error"));
        QCOMPARE(m_views->items()->topLevelItemCount(), 0);
    }

    void faultsAreReportedAndKeepWhatWasBuilt() {
        // More groups counted than stored: the first four stay on show.
        m_store.groups.userGroupCount = 6;
        m_views->DisplayUserGroups();
        QCOMPARE(m_views->groups()->topLevelItemCount(), 4);
        QCOMPARE(m_reports.back().location, std::string("Error Loading Group Alphas"));
        QCOMPARE(m_reports.back().category, std::string("Display Error"));

        m_views->ShowGroupData(7);
        QCOMPARE(m_reports.back().location, std::string("Error Loading Group Items"));

        // A group entry pointing past the Input lists.
        m_store.currentListType = 11;
        m_store.groups.userGroups[0] = Group({{1, 11}, {9, 11}});
        m_views->ShowGroupData(0);
        QCOMPARE(Column(m_views->displayLists(), 0), QStringList({"Players"}));
        QCOMPARE(m_reports.back().location, std::string("Error Loading Group Items"));

        // A member channel below the bound but beyond the Opto table: the
        // channels before it stay.
        m_store.currentListType = 31;
        m_store.lists(SubType::Opto)[0] = List("Short", {0, 1});
        m_store.alpha(SubType::Opto).positionOf = {0};
        m_store.alpha(SubType::Opto).names = {"ON AIR"};
        m_views->ShowDisplayListData(0);
        QCOMPARE(Column(m_views->items(), 0), QStringList({"ON AIR (Ch.0001)"}));
        QCOMPARE(m_reports.back().location, std::string("Error Loading Group Items"));

        m_store.currentUserGroup = 12;
        m_store.currentListType = 31;
        m_views->DetermineSubType();
        QCOMPARE(m_store.currentListType, int16_t(11));
        QCOMPARE(m_reports.back().location, std::string("Error Determing Sub type"));
        QCOMPARE(m_reports.back().category, std::string("Display Error"));
    }
};

QTEST_MAIN(MainViewsTest)
#include "test_main_views.moc"
