// The language of the library's texts: log lines, messages handed to the
// error callback and dialog texts. Chinese is the source language and the
// default; English comes from the translation compiled into the library.
// A host chooses it with QRX_LANG=en or qrx_set_language("en").

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "common/Logging.h"

#include <QCoreApplication>
#include <QTranslator>

#include <cstring>
#include <memory>
#include <mutex>

using namespace qrx::api;

// The compiled translations are a resource of a static part: this call keeps
// them linked in (it must stand outside any namespace).
static void initTranslationResources()
{
    Q_INIT_RESOURCE(qrx_translations);
}

namespace {

// Language code -> compiled translation in the library's resources. The
// source language has no file.
struct LanguageRow
{
    const char *code;
    const char *file;
};

constexpr LanguageRow kLanguages[] = {
    {"zh", nullptr},
    {"en", ":/qrx/translations/qrx_host_en.qm"},
};

std::mutex g_languageMutex;
QTranslator *g_translator = nullptr; // the one installed, if any

const LanguageRow *rowOf(const char *code)
{
    if (!code)
        return nullptr;
    for (const LanguageRow &row : kLanguages) {
        if (std::strcmp(row.code, code) == 0)
            return &row;
    }
    return nullptr;
}

// Installs the row's translation (or none) into the running application.
bool apply(const LanguageRow &row)
{
    initTranslationResources();
    std::lock_guard<std::mutex> lock(g_languageMutex);
    auto *app = QCoreApplication::instance();
    if (!app)
        return false;
    if (g_translator) {
        QCoreApplication::removeTranslator(g_translator);
        delete g_translator;
        g_translator = nullptr;
    }
    if (!row.file)
        return true;
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(QString::fromLatin1(row.file))) {
        qCWarning(lcApi).noquote() << "cannot load the translation" << row.file;
        return false;
    }
    g_translator = translator.release();
    QCoreApplication::installTranslator(g_translator);
    return true;
}

} // namespace

namespace qrx::api {

void applyEnvironmentLanguage()
{
    const QByteArray code = qgetenv("QRX_LANG");
    if (code.isEmpty())
        return;
    if (const LanguageRow *row = rowOf(code.constData()))
        apply(*row);
    else
        qCWarning(lcApi).noquote() << "QRX_LANG names no language of the library:" << code;
}

} // namespace qrx::api

extern "C" int qrx_set_language(const char *code)
{
    const LanguageRow *row = rowOf(code);
    if (!row)
        return 0;
    libraryContext(); // an application to install the translation into
    return apply(*row) ? 1 : 0;
}
