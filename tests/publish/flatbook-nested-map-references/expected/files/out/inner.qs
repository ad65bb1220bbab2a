<?xml version="1.0" encoding="UTF-8" standalone="no" ?><!DOCTYPE dita PUBLIC "-//OASIS//DTD DITA Composite//EN" "ditabase.dtd"><?Qs BoolCondExpr  State 1?><dita><topic id="id-1"><title>Inner</title></topic><topic id="id-2">
  <title>B</title>
  <body><p><xref href="#id-3"/></p></body>
</topic><topic id="id-3">
  <title>C</title>
</topic><topic id="id-4">
  <title>C</title>
<topic id="id-5">
  <title>A</title>
</topic></topic><topic id="id-6">
  <title>C</title>
<topic id="id-7">
  <title>A</title>
</topic></topic></dita>