#include "COdictDataFile.h"

#include "CDataTypeParser.h"
#include "CDomDoc.h"
#include "CVariant.h"
#include "CXmlText.h"

#include <QDateTime>
#include <QDomDocument>

#include <algorithm>
#include <cctype>

const QString COdictDataFile::fileType = QStringLiteral("KiroDataFile");
const QString COdictDataFile::fileVersion = QStringLiteral("1.0.0");

namespace {

const QString kApplication = QStringLiteral("Application");
const QString kData = QStringLiteral("Data");
const QString kObject = QStringLiteral("Object");
const QString kId = QStringLiteral("id");
const QString kSubId = QStringLiteral("subid");
const QString kName = QStringLiteral("Name");
const QString kVersion = QStringLiteral("Version");
const QString kType = QStringLiteral("Type");
const QString kSize = QStringLiteral("Size");
const QString kObjectUsage = QStringLiteral("ObjectUsage");
const QString kValue = QStringLiteral("Value");
const QString kParam = QStringLiteral("Param");
const QString kUnit = QStringLiteral("Unit");
const QString kYUnit = QStringLiteral("Y-Unit");

constexpr quint32 kNone = 0xFFFFFFFFu;
constexpr int kLastParameterSet = 62;

bool isRecord(const QDomElement &element)
{
    return !element.isNull() && element.tagName() == kObject;
}

/// Data types whose records carry a value.
bool hasValueType(NTypes::eTypes_t type)
{
    return type >= NTypes::E_BOOL && type <= NTypes::E_STRUCT;
}

QString hexNumber(quint32 value)
{
    return QStringLiteral("0x%1").arg(value, 8, 16, QLatin1Char('0'));
}

QString replaceErased(QString text)
{
    return text.replace(QChar(0xFFFF), QChar(0));
}

/// \a text as the file can hold it. A text ends at its first U+0000, the firmware's terminator
/// (corrStr() turns erased memory into terminators), and characters XML 1.0 cannot carry are
/// dropped: written raw, either would leave a file that no XML reader loads again.
QString storableText(const QString &text)
{
    const int end = text.indexOf(QChar(0));
    return CXmlText::clean(end < 0 ? text : text.left(end));
}

QDomElement appendTextElement(QDomElement parent, const QString &tag, const QString &text)
{
    QDomDocument doc = parent.ownerDocument();
    QDomElement element = doc.createElement(tag);
    if (!text.isEmpty())
        element.appendChild(doc.createTextNode(text));
    parent.appendChild(element);
    return element;
}

/// File text of \a value for \a object, before the storing step (see COdictDataFile::valueToStr).
QString encodeValue(const QVariant &value, const COdictObject &object)
{
    const NTypes::eTypes_t type = object.dataType();
    if (object.arrayLength() >= 2) {
        if (!value.isValid() || value.isNull())
            return QString();
        const QByteArray bytes = value.userType() == QMetaType::QByteArray
            ? value.toByteArray()
            : CVariant::fromVariant(value, type).toByteArray();
        return QString::fromLatin1(bytes.toHex());
    }
    switch (type) {
    case NTypes::E_USTRING:
    case NTypes::E_UTF8STRING:
    case NTypes::E_WCHARARRAY:
        return replaceErased(value.toString());
    default:
        return CVariant::fromVariant(value, type).toStr();
    }
}

/// The text stored in a "Value" element: the 8-bit text types pass the erased-memory
/// correction here, the wide ones already did in encodeValue().
QString storedValueText(const QVariant &value, const COdictObject &object)
{
    QString text = encodeValue(value, object);
    switch (object.dataType()) {
    case NTypes::E_STRING:
    case NTypes::E_VSTRING:
    case NTypes::E_CHARARRAY:
        text = replaceErased(text);
        break;
    default:
        break;
    }
    return storableText(text);
}

/// Reads the file text of a value of \a object into \a value. An empty text is no value (true);
/// a text that is not a value of the data type is no value either, but answers false. Arrays are
/// hexadecimal bytes: odd-length or non-hexadecimal text counts as unreadable rather than being
/// decoded into partial bytes.
bool decodeValue(const QString &text, const COdictObject &object, QVariant *value)
{
    *value = QVariant();
    if (object.arrayLength() >= 2) {
        const QByteArray digits = text.trimmed().toLatin1(); // non-Latin-1 characters become '?'
        if (digits.isEmpty())
            return true;
        const bool hex = std::all_of(digits.cbegin(), digits.cend(),
                                     [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; });
        if (!hex || digits.size() % 2 != 0)
            return false;
        *value = QByteArray::fromHex(digits);
        return true;
    }
    const CVariant decoded(text, object.dataType());
    if (decoded.isNull())
        return text.trimmed().isEmpty();
    *value = decoded.toVariant();
    return true;
}

/// Appends the "Object" record of \a object; \a writeValue adds the value part in its place
/// between "ObjectUsage" and "Unit".
template<typename WriteValue>
void appendRecord(QDomElement parent, const COdictObject &object, WriteValue writeValue)
{
    QDomElement record = appendTextElement(parent, kObject, QString());
    record.setAttribute(kId, hexNumber(object.id()));
    record.setAttribute(kSubId, hexNumber(object.subId()));
    appendTextElement(record, kName, storableText(object.name()));
    appendTextElement(record, kType, CDataTypeParser::typeToStr(object.dataType()));
    appendTextElement(record, kSize, QString::number(object.dataSize()));
    appendTextElement(record, kObjectUsage, QString::number(object.objectUsage()));
    writeValue(record);
    appendTextElement(record, kUnit, QString::number(object.unit()));
    appendTextElement(record, kYUnit, QString::number(object.yUnit()));
}

/// Reads the fields every record has (all but the value part) into \a object, with the defaults
/// of missing ones; false when one of them is present but unreadable.
bool readRecordFields(COdictObject &object, const QDomElement &record, NTypes::eTypes_t type)
{
    bool ok = true;
    const auto attribute = [&ok, &record](const QString &name) {
        QString error;
        const quint32 value = CDomDoc::attributeAsU32(record, name, kNone, &error);
        ok = ok && error.isEmpty();
        return value;
    };
    const auto number = [&ok, &record](const QString &tag, quint32 def) {
        QString error;
        const quint32 value = CDomDoc::existingSubElementAsU32(tag, record, def, &error);
        ok = ok && error.isEmpty();
        return value;
    };

    const quint32 id = attribute(kId);
    const quint32 subId = attribute(kSubId);
    object.setId(COdictObjectId(id, subId));
    object.setName(CDomDoc::existingSubElementAsString(kName, record, QString()));
    object.setDataType(type);
    const quint32 typeSize = CDataTypeParser::typeSize(type);
    const quint32 size = number(kSize, typeSize);
    object.setDataSize(size);
    const quint32 elements = typeSize == 0 ? 0 : size / typeSize;
    object.setArrayLength(elements >= 2 ? elements : 1);
    object.setObjectUsage(number(kObjectUsage, 0));
    object.setUnit(number(kUnit, 0));
    object.setYUnit(number(kYUnit, 0));
    return ok;
}

/// Calls \a read for every "Object" element below \a root, in document order and each once.
/// Walks the tree with a loop instead of recursion, so deeply nested records cannot exhaust the
/// stack. False for a null root, else the AND of all reads.
template<typename Read>
bool forEachRecord(const QDomElement &root, Read read)
{
    if (root.isNull())
        return false;
    bool ok = true;
    QDomElement element = root.firstChildElement();
    while (!element.isNull()) {
        if (element.tagName() == kObject)
            ok = read(element) && ok;
        QDomElement next = element.firstChildElement();
        QDomElement up = element;
        while (next.isNull() && up != root) {
            next = up.nextSiblingElement();
            if (next.isNull())
                up = up.parentNode().toElement();
        }
        element = next;
    }
    return ok;
}

} // namespace

COdictDataFile::COdictDataFile()
    : CXmlAbstractKiroFile(nullptr)
{
}

COdictDataFile::COdictDataFile(ICLogfile *log)
    : CXmlAbstractKiroFile(log)
{
}

COdictDataFile::COdictDataFile(const CDomDoc &doc, ICLogfile *log)
    : CXmlAbstractKiroFile(log)
{
    // The head first, while there is no document yet: setMetaData() would rewrite its "Header".
    setMetaData(metaDataFromElement(doc.documentElement().firstChildElement(QStringLiteral("Header"))));
    domDoc() = doc;
}

COdictDataFile::~COdictDataFile() = default;

bool COdictDataFile::addObjectToElement(QDomElement element, const COdictValueObject &object)
{
    if (element.isNull())
        return false;
    appendRecord(element, object, [&object](QDomElement record) {
        appendTextElement(record, kValue, storedValueText(object.currentValue(), object));
    });
    return true;
}

bool COdictDataFile::addObjectToElement(QDomElement element, const COdictParameterObject &object)
{
    if (element.isNull())
        return false;
    appendRecord(element, object, [&object](QDomElement record) {
        const QDomElement old = record.firstChildElement(kParam);
        if (!old.isNull())
            record.removeChild(old);
        QDomElement param = appendTextElement(record, kParam, QString());
        const QMap<int, QVariant> values = object.values();
        for (auto it = values.cbegin(); it != values.cend(); ++it) {
            QDomElement entry = appendTextElement(param, kValue, storedValueText(it.value(), object));
            entry.setAttribute(kId, QString::number(it.key()));
        }
    });
    return true;
}

bool COdictDataFile::objectFromElement(COdictValueObject &object, QDomElement element) const
{
    if (!isRecord(element))
        return false;
    bool ok = readRecordFields(object, element, objectType(element));
    object.setCurrentValue(QVariant());
    if (!hasValueType(object.dataType()))
        return false; // deliberately false although the other fields were read: no type, no value
    const QDomElement valueElement = element.firstChildElement(kValue);
    if (valueElement.isNull())
        return ok;
    QVariant value;
    ok = decodeValue(valueElement.text(), object, &value) && ok;
    object.setCurrentValue(value);
    return ok;
}

bool COdictDataFile::objectFromElement(COdictParameterObject &object, QDomElement element) const
{
    if (!isRecord(element))
        return false;
    bool ok = readRecordFields(object, element, objectType(element));
    object.setValues(QMap<int, QVariant>());
    const bool typed = hasValueType(object.dataType());
    const QDomElement param = element.firstChildElement(kParam);
    for (QDomElement entry = param.firstChildElement(kValue); !entry.isNull();
         entry = entry.nextSiblingElement(kValue)) {
        const int set = CDomDoc::attributeAsI32(entry, kId, -1);
        if (set < 0 || set > kLastParameterSet)
            continue; // parameter sets are numbered 0 to 62; other entries are skipped silently
        QVariant value;
        if (typed && decodeValue(entry.text(), object, &value))
            object.setValue(set, value);
        else
            ok = false;
    }
    return ok;
}

bool COdictDataFile::addObjectsToElement(QDomElement element, const QList<COdictValueObject> &objects)
{
    if (element.isNull())
        return false;
    bool ok = true;
    for (const COdictValueObject &object : objects)
        ok = addObjectToElement(element, object) && ok;
    return ok;
}

bool COdictDataFile::addObjectsToElement(QDomElement element, const QList<COdictParameterObject> &objects)
{
    if (element.isNull())
        return false;
    bool ok = true;
    for (const COdictParameterObject &object : objects)
        ok = addObjectToElement(element, object) && ok;
    return ok;
}

bool COdictDataFile::objectsFromElement(QList<COdictValueObject> &objects, QDomElement element) const
{
    return forEachRecord(element, [this, &objects](const QDomElement &record) {
        COdictValueObject object;
        const bool ok = objectFromElement(object, record);
        objects.append(object);
        return ok;
    });
}

bool COdictDataFile::objectsFromElement(QList<COdictParameterObject> &objects, QDomElement element) const
{
    return forEachRecord(element, [this, &objects](const QDomElement &record) {
        COdictParameterObject object;
        const bool ok = objectFromElement(object, record);
        objects.append(object);
        return ok;
    });
}

bool COdictDataFile::objectsFromElement(QMap<COdictObjectId, COdictParameterObject> &objects,
                                        QDomElement element) const
{
    return forEachRecord(element, [this, &objects](const QDomElement &record) {
        COdictParameterObject object;
        const bool ok = objectFromElement(object, record);
        objects.insert(object.uniqueId(), object);
        return ok;
    });
}

bool COdictDataFile::setApplicationData(const QString &name, const QString &version)
{
    QDomElement root = documentElement();
    if (root.isNull())
        return false;
    QDomElement application = root.firstChildElement(kApplication);
    if (application.isNull()) {
        // Keep the record ahead of the objects even when they were added first.
        application = domDoc().document().createElement(kApplication);
        const QDomElement data = root.firstChildElement(kData);
        if (data.isNull())
            root.appendChild(application);
        else
            root.insertBefore(application, data);
    }
    domDoc().setSubElementText(application, kName, storableText(name));
    domDoc().setSubElementText(application, kVersion, storableText(version));
    return !application.isNull();
}

bool COdictDataFile::setObjects(const QList<COdictValueObject> &objects)
{
    const QDomElement root = documentElement();
    if (root.isNull())
        return false;
    return addObjectsToElement(domDoc().findOrCreateSubElement(root, kData), objects);
}

bool COdictDataFile::setObjects(const QList<COdictParameterObject> &objects)
{
    const QDomElement root = documentElement();
    if (root.isNull())
        return false;
    return addObjectsToElement(domDoc().findOrCreateSubElement(root, kData), objects);
}

bool COdictDataFile::objects(QList<COdictValueObject> &objects) const
{
    return objectsFromElement(objects, documentElement().firstChildElement(kData));
}

bool COdictDataFile::objects(QList<COdictParameterObject> &objects) const
{
    return objectsFromElement(objects, documentElement().firstChildElement(kData));
}

bool COdictDataFile::objects(QMap<COdictObjectId, COdictParameterObject> &objects) const
{
    return objectsFromElement(objects, documentElement().firstChildElement(kData));
}

QString COdictDataFile::corrStr(const QString &text) const
{
    return replaceErased(text);
}

QString COdictDataFile::valueToStr(const QVariant &value, const COdictValueObject &object) const
{
    return encodeValue(value, object);
}

QString COdictDataFile::valueToStr(const QVariant &value, const COdictParameterObject &object) const
{
    return encodeValue(value, object);
}

NTypes::eTypes_t COdictDataFile::objectType(QDomElement element) const
{
    const QDomElement type = element.firstChildElement(kType);
    return type.isNull() ? NTypes::E_UNKNOWN : CDataTypeParser::strToType(type.text().trimmed());
}

QString COdictDataFile::applicationName() const
{
    return documentElement().firstChildElement(kApplication).firstChildElement(kName).text();
}

QString COdictDataFile::applicationVersion() const
{
    return documentElement().firstChildElement(kApplication).firstChildElement(kVersion).text();
}

bool COdictDataFile::saveValues(const QString &fileName, const QList<COdictValueObject> &objects,
                                const QString &appName, const QString &appVersion)
{
    return createDocument(appName, appVersion) && setObjects(objects) && save(fileName);
}

bool COdictDataFile::saveParameters(const QString &fileName, const QList<COdictParameterObject> &objects,
                                    const QString &appName, const QString &appVersion)
{
    return createDocument(appName, appVersion) && setObjects(objects) && save(fileName);
}

bool COdictDataFile::loadValues(const QString &fileName, QList<COdictValueObject> &objects, QString *errorText)
{
    objects.clear();
    return openDocument(fileName, errorText) && readResult(this->objects(objects), fileName, errorText);
}

bool COdictDataFile::loadParameters(const QString &fileName, QList<COdictParameterObject> &objects,
                                    QString *errorText)
{
    objects.clear();
    return openDocument(fileName, errorText) && readResult(this->objects(objects), fileName, errorText);
}

bool COdictDataFile::loadParameters(const QString &fileName, QMap<COdictObjectId, COdictParameterObject> &objects,
                                    QString *errorText)
{
    objects.clear();
    return openDocument(fileName, errorText) && readResult(this->objects(objects), fileName, errorText);
}

bool COdictDataFile::handleVersionError(const QString &found, const QString &expected)
{
    Q_UNUSED(found)
    Q_UNUSED(expected)
    return true;
}

bool COdictDataFile::createDocument(const QString &appName, const QString &appVersion)
{
    CXMLMetaData meta = metaData();
    const QDateTime now = QDateTime::currentDateTime();
    meta.setDate(now.date());
    meta.setTime(QTime(now.time().hour(), now.time().minute(), now.time().second())); // the head keeps seconds
    return create(fileType, fileVersion, meta) && setApplicationData(appName, appVersion);
}

bool COdictDataFile::openDocument(const QString &fileName, QString *errorText)
{
    return open(fileName, fileType, fileVersion, errorText) == E_OPEN_OK;
}

bool COdictDataFile::readResult(bool read, const QString &fileName, QString *errorText) const
{
    if (errorText && !read) {
        *errorText = documentElement().firstChildElement(kData).isNull()
            ? QStringLiteral("'%1' has no \"Data\" element.").arg(fileName)
            : QStringLiteral("Some records of '%1' could not be read completely.").arg(fileName);
    }
    return read;
}
