<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>NHelioCloudDocsAsynJsObj</name>
    <message>
        <source>VLT Diagnositic</source>
        <translation>VLT 诊断</translation>
    </message>
    <message>
        <source>choose download path</source>
        <translation>选择下载路径</translation>
    </message>
    <message>
        <source>upload to cloud</source>
        <translation>上传到云端</translation>
    </message>
    <message>
        <source>ok</source>
        <translation>确定</translation>
    </message>
</context>
<context>
    <name>NHelioCloudDocsPage</name>
    <message>
        <source>VLT Docs</source>
        <translation>VLT 文档</translation>
    </message>
</context>
</TS>
