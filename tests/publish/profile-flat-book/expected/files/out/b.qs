<?xml version="1.0" encoding="UTF-8" standalone="no" ?><!DOCTYPE dita PUBLIC "-//OASIS//DTD DITA Composite//EN" "ditabase.dtd"><?Qs BoolCondExpr  State 1?><dita><topic id="id-1"><title/></topic><topic id="id-2">
  <title>B</title>
  <body><p><xref href="#id-3"/></p><draft-comment translate="no"/></body>
<topic id="id-3">
  <title>A</title>
  <body><p audience="a">stays</p></body>
</topic></topic></dita>