"""Relationship types."""

from __future__ import annotations

_OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/"
_PACKAGE = "http://schemas.openxmlformats.org/package/2006/relationships/"


class RT:
    """The relationship types that are used most, in transitional documents."""

    CORE_PROPERTIES = _PACKAGE + "metadata/core-properties"
    THUMBNAIL = _PACKAGE + "metadata/thumbnail"
    OFFICE_DOCUMENT = _OFFICE + "officeDocument"
    EXTENDED_PROPERTIES = _OFFICE + "extended-properties"
    CUSTOM_PROPERTIES = _OFFICE + "custom-properties"
    ATTACHED_TEMPLATE = _OFFICE + "attachedTemplate"
    CHART = _OFFICE + "chart"
    COMMENTS = _OFFICE + "comments"
    CUSTOM_XML = _OFFICE + "customXml"
    FONT_TABLE = _OFFICE + "fontTable"
    FOOTER = _OFFICE + "footer"
    HEADER = _OFFICE + "header"
    HYPERLINK = _OFFICE + "hyperlink"
    IMAGE = _OFFICE + "image"
    NUMBERING = _OFFICE + "numbering"
    OLE_OBJECT = _OFFICE + "oleObject"
    PACKAGE = _OFFICE + "package"
    SETTINGS = _OFFICE + "settings"
    SHARED_STRINGS = _OFFICE + "sharedStrings"
    SLIDE = _OFFICE + "slide"
    SLIDE_LAYOUT = _OFFICE + "slideLayout"
    SLIDE_MASTER = _OFFICE + "slideMaster"
    STYLES = _OFFICE + "styles"
    THEME = _OFFICE + "theme"
    WORKSHEET = _OFFICE + "worksheet"
