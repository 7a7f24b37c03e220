// The rules the dialogs share: address normalisation and the choice of the
// program folder.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "app/program_folder.h"
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
};

QTEST_MAIN(DialogRulesTest)
#include "test_dialog_rules.moc"
