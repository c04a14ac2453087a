#include "admin/samplearchive.h"

#include "admin/sampledocuments.h"
#include "admin/samplevocabulary.h"
#include "service/archive.h"
#include "service/bulkload.h"
#include "service/session.h"

namespace kelva {

Result<void> createSampleArchive(const SampleOptions &options, const std::function<void(int)> &progress)
{
    NewArchive fresh;
    fresh.path = options.path;
    fresh.administrator = QStringLiteral("admin");
    fresh.password = options.password;
    fresh.subArchive = QStringLiteral("Current archive");
    if (const Result<void> created = archive::create(fresh); !created)
        return created.error();
    auto opened = Session::openAsOwner(options.path, fresh.administrator);
    if (!opened)
        return opened.error();
    Session &session = *opened.value();
    const auto vocabulary = createSampleVocabulary(session, options.password);
    if (!vocabulary)
        return vocabulary.error();

    SampleDocuments generator(vocabulary.value(), options.seed, options.today);
    BulkLoad load(session);
    for (int i = 0; i < options.documents; ++i) {
        const Result<qint64> added = load.add(generator.next(i < options.files));
        if (!added)
            return added.error();
        for (const SampleDocuments::Event &event : generator.events())
            if (const Result<void> noted = load.addEvent(added.value(), event.action, event.time, event.user);
                !noted)
                return noted.error();
        if (i % 1000 == 999)
            progress(i + 1);
    }
    return load.finish();
}

} // namespace kelva
