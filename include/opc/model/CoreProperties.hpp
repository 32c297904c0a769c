#pragma once

#include <opc/model/Export.hpp>

#include <boost/date_time/posix_time/ptime.hpp>
#include <boost/optional.hpp>

#include <string>
#include <utility>
#include <vector>

namespace opc::model {

/// The metadata of a package: its title, creator, dates and so on. `PackageHelper` reads it from a package and writes it
/// into one.
///
/// A value type; copies can go to other threads. Each field is absent until it is set; an empty text is a value. `clear`
/// makes all fields absent, and `CorePropertyField` a single one.
///
/// Setters check nothing: a value that a file can't hold is refused when it is written. A file drops white space at the
/// end of a keyword. Every getter returns a copy: store it in a variable before you iterate over the keywords.
class OPC_MODEL_EXPORT CoreProperties {
public:
    using Text = boost::optional<std::u16string>;

    /// In UTC. A file keeps whole seconds. Special values such as not-a-date-time aren't written.
    using Time = boost::optional<boost::posix_time::ptime>;

    /// Each keyword with its language, such as "en-GB"; empty for no language.
    using KeywordList = std::vector<std::pair<std::u16string, std::u16string>>;
    using Keywords = boost::optional<KeywordList>;

    CoreProperties();
    CoreProperties(const CoreProperties&);
    CoreProperties& operator=(const CoreProperties&);

    /// `other` can then only be assigned to, cleared or destroyed.
    /// @{
    CoreProperties(CoreProperties&& other) noexcept;
    CoreProperties& operator=(CoreProperties&& other) noexcept;
    /// @}
    ~CoreProperties();

    /// Makes all fields absent.
    void clear();

    /// Whether all fields are absent.
    bool isEmpty() const;

    /// The kind of document, such as "Letter" or "Resume".
    Text getCategory() const { return category; }

    /// The status, such as "Draft" or "Final".
    Text getContentStatus() const { return contentStatus; }

    Time getCreated() const { return created; }
    Text getCreator() const { return creator; }

    /// An abstract, a table of contents or the like.
    Text getDescription() const { return description; }

    /// An unambiguous name of the content.
    Text getIdentifier() const { return identifier; }

    /// A file doesn't distinguish an empty list from an absent one.
    Keywords getKeywords() const { return keywords; }

    /// The language of the content, as a tag of RFC 3066.
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
