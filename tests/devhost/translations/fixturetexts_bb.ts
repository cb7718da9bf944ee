<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="bb">
<context>
    <name>Fixture</name>
    <message>
        <source>word</source>
        <translation>word in bb</translation>
    </message>
</context>
</TS>
