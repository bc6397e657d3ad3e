<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US">
<context>
    <name>NHelioCloudDocsAsynJsObj</name>
    <message>
        <source>VLT Diagnositic</source>
        <translation>VLT Diagnositic</translation>
    </message>
    <message>
        <source>choose download path</source>
        <translation>choose download path</translation>
    </message>
    <message>
        <source>upload to cloud</source>
        <translation>upload to cloud</translation>
    </message>
    <message>
        <source>ok</source>
        <translation>ok</translation>
    </message>
</context>
<context>
    <name>NHelioCloudDocsPage</name>
    <message>
        <source>VLT Docs</source>
        <translation>VLT Docs</translation>
    </message>
</context>
</TS>
