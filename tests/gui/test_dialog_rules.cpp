// The rules the dialogs share: address normalisation, the key filters, the
// file dialog's filter list and the choice of the program folder.
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

#include "app/program_folder.h"
#include "ui/file_dialog.h"
#include "ui/key_filter.h"
#include "ui/normalise_address.h"

using namespace lumeth;

class DialogRulesTest : public QObject {
    Q_OBJECT

private slots:
    void normaliseAddress_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QString>("normalised");
        QTest::newRow("plain") << "192.168.1.20" << true << "192.168.1.20";
        QTest::newRow("leading zeros and clamp") << "010.1.1.300" << true << "10.1.1.255";
        QTest::newRow("last part clamped") << "192.168.1.999" << true << "192.168.1.255";
        QTest::newRow("empty parts are 0") << "..." << true << "0.0.0.0";
        QTest::newRow("fourth part is the rest") << "1.2.3.4.5" << true << "1.2.3.4";
        QTest::newRow("negative clamps to 0") << "-7.2.3.4" << true << "0.2.3.4";
        QTest::newRow("two dots keep the previous") << "192.168.1" << false << "previous";
        QTest::newRow("no dots") << "localhost" << false << "previous";
    }
    void normaliseAddress() {
        QFETCH(QString, typed);
        QFETCH(bool, accepted);
        QFETCH(QString, normalised);
        std::string result = "previous";
        QCOMPARE(NormaliseAddress(typed.toStdString(), result), accepted);
        QCOMPARE(QString::fromStdString(result), normalised);
    }

    void keyFiltersDiscardRefusedCharacters() {
        QLineEdit address;
        KeyFilter::Install(&address, AcceptsAddressKey);
        QTest::keyClicks(&address, "10.a0/.1 x");
        QCOMPARE(address.text(), QString("10.0.1"));
        QTest::keyClick(&address, Qt::Key_Backspace);
        QCOMPARE(address.text(), QString("10.0."));

        // The numeric boxes let the slash through on purpose.
        QLineEdit port;
        KeyFilter::Install(&port, AcceptsNumberKey);
        QTest::keyClicks(&port, "1/2.x-9");
        QCOMPARE(port.text(), QString("1/29"));
        QTest::keyClick(&port, Qt::Key_Backspace);
        QCOMPARE(port.text(), QString("1/2"));
        // Navigation still works.
        QTest::keyClick(&port, Qt::Key_Home);
        QTest::keyClicks(&port, "7");
        QCOMPARE(port.text(), QString("71/2"));
    }

    void fileDialogFilterList() {
        QCOMPARE(FileFilterText("dat"), QString("(*.dat)|*.dat|All Files (*.*)|*.*"));
        QCOMPARE(FileFilterText(""), QString("All Files (*.*)|*.*"));
        QCOMPARE(FileNameFilters("dat"), QStringList({"(*.dat)", "All Files (*.*)"}));
    }

    void programFolder() {
        QTemporaryDir temp;
        QVERIFY(temp.isValid());
        const QString data = temp.path() + "/data/Lumeth Admin";
        const QString exe = temp.path() + "/bin";
        QVERIFY(QDir().mkpath(exe));

        // --home wins and is created.
        const QString home = temp.path() + "/home/admin";
        QCOMPARE(ChooseProgramFolder(home, exe, data), home + "/");
        QVERIFY(QDir(home).exists());
        QCOMPARE(ChooseProgramFolder(home + "/", exe, data), home + "/");

        // A writable executable folder comes next.
        QCOMPARE(ChooseProgramFolder(std::nullopt, exe, data), exe + "/");
        QVERIFY(!QDir(data).exists());

        // A read-only one falls back to the per-user data folder, created.
        QFile::setPermissions(exe, QFile::ReadOwner | QFile::ExeOwner);
        if (QFileInfo(exe).isWritable())
            QSKIP("running with permissions that ignore read-only folders");
        QCOMPARE(ChooseProgramFolder(std::nullopt, exe, data), data + "/");
        QVERIFY(QDir(data).exists());
        QFile::setPermissions(exe, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    void homeArgument() {
        QCOMPARE(HomeArgument({"lumeth-admin", "--home", "/a b"}), std::optional<QString>("/a b"));
        QCOMPARE(HomeArgument({"lumeth-admin", "--home=/c"}), std::optional<QString>("/c"));
        QVERIFY(!HomeArgument({"lumeth-admin"}).has_value());
        QVERIFY(!HomeArgument({"lumeth-admin", "--home"}).has_value());
    }
};

QTEST_MAIN(DialogRulesTest)
#include "test_dialog_rules.moc"
