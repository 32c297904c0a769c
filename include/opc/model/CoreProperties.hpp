#pragma once

#include <opc/model/Export.hpp>

#include <boost/date_time/posix_time/ptime.hpp>
#include <boost/optional.hpp>

#include <string>
#include <utility>
#include <vector>

namespace opc::model {

/// The metadata of a package: its title, creator, dates and so on.
///
/// A plain value, free to be copied to another thread. Each field is absent until it is set; an empty text is
/// a value. `clear` makes all fields absent, and `CorePropertyField` a single one. `PackageHelper` reads
/// it from a package and writes it into one.
///
/// Nothing is checked here: what a file can't hold is refused in writing. White space at the end of a keyword doesn't
/// survive a file. Every getter gives a copy: keep it in a variable to walk through the keywords.
class OPC_MODEL_EXPORT CoreProperties {
public:
    using Text = boost::optional<std::u16string>;

    /// In UTC. A file keeps whole seconds; a special value such as not-a-date-time isn't written.
    using Time = boost::optional<boost::posix_time::ptime>;

    /// Each keyword with its language, such as "en-GB", which is empty for none.
    using KeywordList = std::vector<std::pair<std::u16string, std::u16string>>;
    using Keywords = boost::optional<KeywordList>;

    CoreProperties();
    CoreProperties(const CoreProperties&);
    CoreProperties& operator=(const CoreProperties&);
    ~CoreProperties();

    /// Makes all fields absent.
    void clear();

    /// Whether all fields are absent.
    bool isEmpty() const;

    /// A sort of thing, such as "Letter" or "Resume".
    Text getCategory() const { return category; }

    /// Such as "Draft" or "Final".
    Text getContentStatus() const { return contentStatus; }

    Time getCreated() const { return created; }
    Text getCreator() const { return creator; }

    /// An abstract, a table of contents and the like.
    Text getDescription() const { return description; }

    /// An unambiguous name of the content.
    Text getIdentifier() const { return identifier; }

    /// In a file an empty list is the same as none.
    Keywords getKeywords() const { return keywords; }

    /// The language of the content, as RFC 3066 writes it.
    Text getLanguage() const { return language; }

    Text getLastModifiedBy() const { return lastModifiedBy; }
    Time getLastPrinted() const { return lastPrinted; }
    Time getModified() const { return modified; }
    Text getRevision() const { return revision; }
    Text getSubject() const { return subject; }
    Text getTitle() const { return title; }
    Text getVersion() const { return version; }

    void setCategory(const std::u16string& value) { category = value; }
    void setContentStatus(const std::u16string& value) { contentStatus = value; }
    void setCreated(boost::posix_time::ptime value) { created = value; }
    void setCreator(const std::u16string& value) { creator = value; }
    void setDescription(const std::u16string& value) { description = value; }
    void setIdentifier(const std::u16string& value) { identifier = value; }
    void setKeywords(const KeywordList& value) { keywords = value; }
    void setLanguage(const std::u16string& value) { language = value; }
    void setLastModifiedBy(const std::u16string& value) { lastModifiedBy = value; }
    void setLastPrinted(boost::posix_time::ptime value) { lastPrinted = value; }
    void setModified(boost::posix_time::ptime value) { modified = value; }
    void setRevision(const std::u16string& value) { revision = value; }
    void setSubject(const std::u16string& value) { subject = value; }
    void setTitle(const std::u16string& value) { title = value; }
    void setVersion(const std::u16string& value) { version = value; }

private:
    friend struct CorePropertyField; // whose members they are too

    Text category;
    Text contentStatus;
    Time created;
    Text creator;
    Text description;
    Text identifier;
    Keywords keywords;
    Text language;
    Text lastModifiedBy;
    Time lastPrinted;
    Time modified;
    Text revision;
    Text subject;
    Text title;
    Text version;
};

} // namespace opc::model
