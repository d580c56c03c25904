#include "Applications/Doctor/Window/DoctorWindow.h"

#include <QClipboard>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QSaveFile>
#include <QVBoxLayout>

#include <utility>

namespace farview
{
namespace
{

constexpr QSize windowSize{720, 560};
constexpr int areas = static_cast<int>(Area::devices) + 1;

QLabel* plainLabel(QBoxLayout& layout, const char* objectName)
{
    auto* label = new QLabel;
    label->setObjectName(QLatin1String(objectName));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    layout.addWidget(label);
    return label;
}

} // namespace

DoctorWindow::DoctorWindow(Actions actions) : mActions(std::move(actions))
{
    buildControls();
    setWindowTitle(text("Farview Diagnosis"));
    resize(windowSize);
    showBeginning();
}

void DoctorWindow::buildControls()
{
    auto* layout = new QVBoxLayout(this);
    mVerdict = plainLabel(*layout, "verdictLabel");
    QFont bold = mVerdict->font();
    bold.setBold(true);
    mVerdict->setFont(bold);
    mProgress = new QProgressBar;
    mProgress->setObjectName(QStringLiteral("progressBar"));
    mProgress->setRange(0, areas);
    mProgress->setTextVisible(false);
    mProgress->setAccessibleName(text("Progress of the diagnosis"));
    layout->addWidget(mProgress);
    mText = new QPlainTextEdit;
    mText->setObjectName(QStringLiteral("reportText"));
    mText->setReadOnly(true);
    mText->setAccessibleName(text("Report"));
    mText->setTabChangesFocus(true);
    layout->addWidget(mText);
    mOutcome = plainLabel(*layout, "outcomeLabel");
    auto* row = new QHBoxLayout;
    layout->addLayout(row);
    mAgain = addButton(*row, "againButton", "&Again", &DoctorWindow::examineAgain);
    row->addStretch();
    mCopy = addButton(*row, "copyButton", "&Copy", &DoctorWindow::copy);
    mSave = addButton(*row, "saveButton", "&Save…", &DoctorWindow::askWhereToSave);
    addButton(*row, "closeButton", "C&lose", &DoctorWindow::closeWindow);
}

QPushButton* DoctorWindow::addButton(QBoxLayout& row, const char* objectName, const char* title,
                                     void (DoctorWindow::*pressed)())
{
    auto* button = new QPushButton(text(title));
    button->setObjectName(QLatin1String(objectName));
    connect(button, &QPushButton::clicked, this, pressed);
    row.addWidget(button);
    return button;
}

QString DoctorWindow::text(const char* key) const
{
    return QString::fromStdString(mActions.translate(key));
}

void DoctorWindow::showBeginning()
{
    mText->clear();
    showOutcome({});
    mProgress->setValue(0);
    mVerdict->setText(text("Looking at this computer and its network…"));
    setFinished(false);
}

void DoctorWindow::showArea(Area area)
{
    mProgress->setValue(static_cast<int>(area));
    mVerdict->setText(text("Looking at this computer and its network…") + QLatin1String(" ") +
                      text(titleOf(area)));
}

void DoctorWindow::showReport(const Report& report)
{
    mReport = report;
    mVerdict->setText(text(titleOf(verdictOf(report))));
    mText->setPlainText(QString::fromStdString(renderedText(report, mActions.translate)));
    setFinished(true);
}

void DoctorWindow::setFinished(bool isFinished)
{
    mProgress->setVisible(!isFinished);
    for (QPushButton* each : {mCopy, mSave, mAgain})
        each->setEnabled(isFinished);
}

void DoctorWindow::examineAgain()
{
    showBeginning();
    mActions.examineAgain();
}

void DoctorWindow::copy()
{
    QGuiApplication::clipboard()->setText(mText->toPlainText());
    showOutcome(text("Copied."));
}

void DoctorWindow::askWhereToSave()
{
    auto* dialog = new QFileDialog(this, text("Save the report"), QDir::homePath());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->selectFile(QStringLiteral("farview-diagnosis.txt"));
    connect(dialog, &QFileDialog::fileSelected, this, &DoctorWindow::saveAs);
    dialog->open();
}

bool DoctorWindow::saveAs(const QString& path)
{
    const bool asJSON = path.endsWith(QLatin1String(".json"));
    const std::string contents =
        asJSON ? renderedJSON(mReport) : mText->toPlainText().toStdString();
    QSaveFile file(path);
    const bool saved = file.open(QIODevice::WriteOnly) &&
                       file.write(contents.data(), static_cast<qint64>(contents.size())) >= 0 &&
                       file.commit();
    showOutcome(saved ? text("Saved.")
                      : text("The report could not be saved:") + QLatin1String(" ") +
                            file.errorString());
    return saved;
}

void DoctorWindow::showOutcome(const QString& outcome)
{
    mOutcome->setText(outcome);
    mOutcome->setVisible(!outcome.isEmpty());
}

void DoctorWindow::closeWindow() { close(); }

void DoctorWindow::closeEvent(QCloseEvent* event)
{
    QWidget::closeEvent(event);
    mActions.closed();
}

void DoctorWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

} // namespace farview
