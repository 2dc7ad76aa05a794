<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>Nocta</name>
    <message numerus="yes">
        <source>Every %n min</source>
        <translation>
            <numerusform>Every %n min</numerusform>
            <numerusform>Every %n min</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Every %n minutes</source>
        <translation>
            <numerusform>Every %n minute</numerusform>
            <numerusform>Every %n minutes</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n seconds</source>
        <translation>
            <numerusform>%n second</numerusform>
            <numerusform>%n seconds</numerusform>
        </translation>
    </message>
</context>
</TS>
