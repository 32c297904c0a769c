"""Core, custom and extended properties."""
from datetime import datetime, timedelta, timezone

import pytest

import opcmodel as opc
from packages import make_document

NOON = datetime(2024, 2, 29, 12, 0, 5, tzinfo=timezone.utc)


def test_core_properties_come_back():
    with opc.open(make_document(), "r+") as package:
        properties = package.properties
        assert len(properties) == 0 and properties.title is None
        properties.title = "Überschrift"
        properties.created = NOON.astimezone(timezone(timedelta(hours=5)))
        properties["lastModifiedBy"] = "somebody"
        properties["keywords"] = [("Farbe", "de"), "colour"]
        package.save()
        with opc.open(package.to_bytes()) as saved:
            assert dict(saved.properties) == {
                "title": "Überschrift", "created": NOON, "lastModifiedBy": "somebody",
                "keywords": [("Farbe", "de"), ("colour", "")]}
            assert saved.properties.created.utcoffset() == timedelta(0)
        del properties["title"]
        properties.last_modified_by = None
        assert set(properties) == {"created", "keywords"}
        package.properties = {"subject": "alone"}
        assert dict(properties) == {"subject": "alone"}


def test_what_core_properties_refuse():
    with opc.open(make_document(), "r+") as package:
        properties = package.properties
        properties.title = "stays"
        for name, value, kind in (
            ("created", NOON.replace(tzinfo=None), ValueError), ("created", "2024", TypeError),
            ("created", NOON.replace(year=1004), ValueError), ("title", 5, TypeError), ("colour", "red", KeyError),
            ("title", "\x01", opc.InvalidPartContent), ("keywords", 5, TypeError),
        ):
            with pytest.raises(kind):
                properties[name] = value
        for action in (lambda: properties.colour, lambda: setattr(properties, "colour", 1)):
            with pytest.raises(AttributeError):
                action()
        with pytest.raises(KeyError):
            del properties["subject"]
        assert dict(properties) == {"title": "stays"}


def test_office_properties_come_back():
    values = {"text": "a & b", "yes": True, "number": -5, "large": 2**40, "half": 0.5, "time": NOON}
    with opc.open(make_document(), "r+") as package:
        for name, value in values.items():
            package.custom_properties[name] = value
        package.extended_properties["Company"] = "Example"
        package.save()
        with opc.open(package.to_bytes()) as saved:
            assert dict(saved.custom_properties) == values
            assert dict(saved.extended_properties) == {"Company": "Example"}
        del package.custom_properties["text"]
        assert "text" not in package.custom_properties and len(package.custom_properties) == 5
        with pytest.raises(TypeError):
            package.custom_properties["x"] = object()
        with pytest.raises(opc.InvalidPartContent):
            package.custom_properties["x"] = "\x01"
        package.clean()
        assert not package.custom_properties and not package.extended_properties
